// A plugin of qemu-arm that counts the instructions of one thread in the code of the handheld's
// images.
//
// An image's code is what the program makes executable with mprotect: only the loader of images
// does so. The system call 0x1000 with the argument 1 begins a count for the thread that makes it.
// With the argument 0 it ends the count, and the plugin prints it as a line.
#include <inttypes.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

// What is used of qemu's interface. Its header is in no package.
typedef uint64_t Word;
struct qemu_plugin_tb;
struct qemu_plugin_insn;
typedef void (*OnBlock)(Word plugin, struct qemu_plugin_tb*);
typedef void (*OnInstruction)(unsigned cpu, void* data);
typedef void (*OnSystemCall)(Word plugin, unsigned cpu, int64_t number, Word, Word, Word, Word,
                             Word, Word, Word, Word);
void qemu_plugin_register_vcpu_tb_trans_cb(Word plugin, OnBlock);
void qemu_plugin_register_vcpu_syscall_cb(Word plugin, OnSystemCall);
void qemu_plugin_register_vcpu_insn_exec_cb(struct qemu_plugin_insn*, OnInstruction, int flags,
                                            void* data);
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb*);
struct qemu_plugin_insn* qemu_plugin_tb_get_insn(const struct qemu_plugin_tb*, size_t);
uint64_t qemu_plugin_insn_vaddr(const struct qemu_plugin_insn*);
int qemu_plugin_version = 1;

enum { kMprotect = 125, kExecutable = 4, kMark = 0x1000, kMostImages = 64 };

struct Code {
  Word begin;
  Word size;
};
static struct Code images[kMostImages];
static size_t image_count;
static unsigned counted_cpu = UINT_MAX;  // a thread is a processor to qemu
static uint64_t count;

static void Count(unsigned cpu, void* data) {
  (void)data;
  if (cpu == counted_cpu) ++count;
}

static void OnTranslation(Word plugin, struct qemu_plugin_tb* block) {
  (void)plugin;
  for (size_t i = 0; i < qemu_plugin_tb_n_insns(block); ++i) {
    struct qemu_plugin_insn* const instruction = qemu_plugin_tb_get_insn(block, i);
    const Word at = qemu_plugin_insn_vaddr(instruction);
    for (size_t image = 0; image < image_count; ++image) {
      if (at - images[image].begin >= images[image].size) continue;  // also where it is below
      qemu_plugin_register_vcpu_insn_exec_cb(instruction, &Count, 0, NULL);
    }
  }
}

static void OnCall(Word plugin, unsigned cpu, int64_t number, Word first, Word second, Word third,
                   Word a4, Word a5, Word a6, Word a7, Word a8) {
  (void)plugin, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
  if (number == kMprotect && (third & kExecutable) != 0) {
    if (image_count == kMostImages) abort();
    images[image_count++] = (struct Code){first, second};
  } else if (number == kMark && first != 0) {
    counted_cpu = cpu;
    count = 0;
  } else if (number == kMark) {
    counted_cpu = UINT_MAX;
    printf("%" PRIu64 "\n", count);
    fflush(stdout);
  }
}

int qemu_plugin_install(Word plugin, const void* info, int argc, char** argv) {
  (void)info, (void)argc, (void)argv;
  qemu_plugin_register_vcpu_tb_trans_cb(plugin, &OnTranslation);
  qemu_plugin_register_vcpu_syscall_cb(plugin, &OnCall);
  return 0;
}
