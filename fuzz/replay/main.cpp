// Fuzz targets without libFuzzer:
//   fuzz_replay TARGET FILE...   runs a target on files
//   fuzz_replay --seeds FOLDER   writes first inputs, made from samples: FOLDER/TARGET/NUMBER
#include "fuzz/Target.h"
#include "platform/cmap/CMAPMessageHeader.h"
#include "tools/catalogue/Modules.h"
#include "tools/catalogue/Sample.h"

#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <vector>

using namespace Pegasus;
using namespace Pegasus::fuzz;

namespace {

// Bytes as text in some of the forms that are recognised.
std::vector<std::string> dumps(const std::string& bytes) {
    static constexpr struct {
        const char* offset;
        const char* byte;
    } kForms[] = {{"{:08x}: ", "{:02x} "}, {"{:07o} ", "{:02x} "}, {"", "{:02x}"},
                  {"", "0x{:02x}, "},      {"", "{:02x}:"},        {"0x{:04x}:  ", "{:02x} "}};
    std::vector<std::string> texts;
    for (const auto& form : kForms) {
        std::string& text = texts.emplace_back();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (i % 16 == 0)
                text += (i ? "\n" : "") + fmt::format(fmt::runtime(form.offset), i);
            text += fmt::format(fmt::runtime(form.byte), static_cast<unsigned char>(bytes[i]));
        }
    }
    return texts;
}

int writeSeeds(const std::filesystem::path& folder) {
    unsigned number = 0;
    bool written = true;
    const auto write = [&](const char* target, const std::string& bytes) {
        std::filesystem::create_directories(folder / target);
        std::ofstream file(folder / target / std::to_string(number), std::ios::binary);
        written &= static_cast<bool>(file << bytes << std::flush);
    };
    mpu::SampleWriter samples(1);
    std::string last;
    for (const mpu::Module& module : mpu::modules())
        for (const mpu::RecordKind& kind : mpu::kindsOf(module)) {
            const std::string message = samples.message(module, kind);
            const std::string record = message.substr(mpu::message_header::kSize);
            ++number;
            write("message", '\1' + message);
            write("decoders", static_cast<char>(module.source) + record);
            write("output", record);
            write("text", record.substr(sizeof(EmpEvLogMsg_s)));
            write("capture", '\0' + message + last);
            write("capture", '\1' + record);
            write("input", '\0' + message);
            for (const std::string& text : dumps(message)) {
                ++number;
                write("input", '\0' + text);
            }
            last = message;
        }
    return written ? 0 : 3;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "--seeds")
        return writeSeeds(argv[2]);
    const auto target = argc > 2 ? targets().find(argv[1]) : targets().end();
    if (target == targets().end()) {
        std::fprintf(stderr, "usage: fuzz_replay TARGET FILE... | --seeds FOLDER\ntargets:");
        for (const auto& [name, function] : targets())
            std::fprintf(stderr, " %s", name.c_str());
        std::fprintf(stderr, "\n");
        return 2;
    }
    int failed = 0;
    for (int i = 2; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        try {
            run(target->second, bytesOf({bytes.data(), bytes.size()}));
        } catch (const std::exception& e) {
            std::fprintf(stderr, "%s: %s\n", argv[i], e.what());
            failed = 1;
        }
    }
    return failed;
}
