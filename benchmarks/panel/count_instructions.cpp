// A plug-in of qemu-user: counts the instructions that a program carries out in the emulator, in
// all its threads, and says the number at the end. The kernel does not run there.
#include <atomic>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>

// The part of the emulator's interface, version 1, that is needed: Debian ships no header of it.
extern "C" {
struct qemu_plugin_tb;
void qemu_plugin_register_vcpu_tb_trans_cb(std::uint64_t id,
                                           void (*call)(std::uint64_t id, qemu_plugin_tb* block));
void qemu_plugin_register_vcpu_tb_exec_cb(qemu_plugin_tb* block,
                                          void (*call)(unsigned int processor, void* data),
                                          int registers, void* data);
void qemu_plugin_register_atexit_cb(std::uint64_t id, void (*call)(std::uint64_t id, void* data),
                                    void* data);
std::size_t qemu_plugin_tb_n_insns(const qemu_plugin_tb* block);

extern const int qemu_plugin_version;
int qemu_plugin_install(std::uint64_t id, const void* emulator, int argc, char** argv);
}

namespace {

const int no_registers = 0;
std::atomic<std::uint64_t> instructions(0);

void count(unsigned int, void* length)
{
    instructions.fetch_add(reinterpret_cast<std::uintptr_t>(length), std::memory_order_relaxed);
}

void look(std::uint64_t, qemu_plugin_tb* block)
{
    const std::uintptr_t length = qemu_plugin_tb_n_insns(block);
    qemu_plugin_register_vcpu_tb_exec_cb(block, count, no_registers,
                                         reinterpret_cast<void*>(length));
}

void say(std::uint64_t, void*)
{
    std::fprintf(stderr, "instructions: %" PRIu64 "\n", instructions.load());
}

} // namespace

const int qemu_plugin_version = 1;

int qemu_plugin_install(std::uint64_t id, const void*, int, char**)
{
    qemu_plugin_register_vcpu_tb_trans_cb(id, look);
    qemu_plugin_register_atexit_cb(id, say, nullptr);
    return 0;
}
