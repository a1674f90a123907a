/* Where a build for coverage has its counters, for those who keep them over the life of a process.
 */
extern char __start___llvm_prf_cnts[];
extern char __stop___llvm_prf_cnts[];

const void* CountersBegin(void) {
  return __start___llvm_prf_cnts;
}
const void* CountersEnd(void) {
  return __stop___llvm_prf_cnts;
}
