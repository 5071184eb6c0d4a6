// A plugin of the emulator: counts the instructions that the guest executes and prints their number
// to standard error. Debian's emulator can load plugins and comes without any, and without the
// header; what is needed of its interface, version 1, is declared here.

#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" {

using PluginId = std::uint64_t;
struct TranslatedBlock;
enum InlineOperation { kAddToCounter = 0 };

void qemu_plugin_register_vcpu_tb_trans_cb(PluginId,
                                           void (*translated)(PluginId, TranslatedBlock*));
std::size_t qemu_plugin_tb_n_insns(const TranslatedBlock*);
void qemu_plugin_register_vcpu_tb_exec_inline(TranslatedBlock*, InlineOperation, void* counter,
                                              std::uint64_t amount);
void qemu_plugin_register_atexit_cb(PluginId, void (*ended)(PluginId, void*), void*);

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

__attribute__((visibility("default"))) int qemu_plugin_install(PluginId id, const void*, int,
                                                               char**) {
  static std::uint64_t counter = 0;
  qemu_plugin_register_vcpu_tb_trans_cb(id, [](PluginId, TranslatedBlock* block) {
    qemu_plugin_register_vcpu_tb_exec_inline(block, kAddToCounter, &counter,
                                             qemu_plugin_tb_n_insns(block));
  });
  qemu_plugin_register_atexit_cb(
      id, [](PluginId, void*) { std::fprintf(stderr, "%" PRIu64 "\n", counter); }, nullptr);
  return 0;
}
}
