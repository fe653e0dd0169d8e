// SPDX-License-Identifier: GPL-3.0-or-later
// A fuzzer of the target SKYHOLD_FUZZ_TARGET.
#include "target.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

namespace skyhold::fuzz {

void broken(const char* rule) {
    std::fprintf(stderr, "BROKEN RULE: %s\n", rule);
    std::abort();
}

} // namespace skyhold::fuzz

// Most of the time would go into noting from where Qt asks for memory.
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=2";
}

// What the fonts' libraries keep is not given back.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\nleak:libfreetype\nleak:libharfbuzz\nleak:libQt6Gui";
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen"); // graphs are drawn, but not shown
    static QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    skyhold::fuzz::SKYHOLD_FUZZ_TARGET.run(
        {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)});
    return 0;
}
