// The kernel's page that every process of a handheld can read. A host has no such page.
#ifndef PLATFORM_DEVICE_LOADER_KERNEL_PAGE_H_
#define PLATFORM_DEVICE_LOADER_KERNEL_PAGE_H_

namespace sim {

// From the first call on, a load of the process's number from that page gives the number of the
// simulated process that runs.
void AnswerForKernelPage();

}  // namespace sim

#endif  // PLATFORM_DEVICE_LOADER_KERNEL_PAGE_H_
