#include "e2e/windows_staging.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <unordered_map>

#include <windows.h>

#include "e2e/process_runner.h"
#include "support/test_support.h"

namespace fs = std::filesystem;

namespace e2e {

namespace {

std::string runSevenZip(const std::vector<std::string>& arguments, const std::string& directory) {
    ProcessRequest request;
    request.arguments.push_back(nativePath(testsupport::binDir() + "/qx7za.exe"));
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    request.directory = directory;
    request.environment = currentEnvironment();
    const ProcessResult result = runProcess(request);
    if (result.started && !result.timedOut && result.exitCode == 0) return "";
    return "qx7za.exe " + arguments[0] + " failed (exit " + std::to_string(result.exitCode) + "): " + result.output;
}

// Writes bits from the lowest up, in groups of nBits bytes: when the code
// width grows, compress(1) starts a new group, and so must the writer.
class CodeWriter {
public:
    void put(std::uint32_t code, int bits) {
        for (int i = 0; i < bits; ++i, ++position_) {
            if ((position_ >> 3) >= bytes_.size()) bytes_.push_back('\0');
            if ((code >> i) & 1u) bytes_[position_ >> 3] = static_cast<char>(bytes_[position_ >> 3] | (1 << (position_ & 7)));
        }
    }
    void startGroup(int bits) {
        const std::uint64_t group = static_cast<std::uint64_t>(bits) * 8;
        position_ = origin_ + (position_ - origin_ + group - 1) / group * group;
        origin_ = position_;
        bytes_.resize(static_cast<std::size_t>((position_ + 7) >> 3), '\0');
    }
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
    std::uint64_t position_ = 0;
    std::uint64_t origin_ = 0;
};

bool isDelimiter(char c) { return c == ' ' || c == '\t' || c == '"' || c == '[' || c == ']' || c == '\n' || c == '\r'; }

}  // namespace

std::string nativePath(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::string withBackslashes(const std::string& text) {
    static const char* const kFolders[] = {"<ROOT>", "<WORK>", "<TMP>", "<DOUBLE>", "<BIN>", "<SOURCE>"};
    std::string result;
    bool inPath = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '<') {
            for (const char* folder : kFolders) {
                if (text.compare(i, std::char_traits<char>::length(folder), folder) == 0) inPath = true;
            }
        }
        if (isDelimiter(text[i])) inPath = false;
        result += inPath && text[i] == '/' ? '\\' : text[i];
    }
    return result;
}

std::string lzwCompress(const std::string& data) {
    constexpr int kMaxBits = 16;
    constexpr std::uint32_t kCodeLimit = 1u << kMaxBits;
    constexpr std::uint32_t kFirstFree = 257;  // 256 is the clear code of block mode
    std::string out = "\x1f\x9d";
    out += static_cast<char>(0x80 | kMaxBits);
    if (data.empty()) return out;

    CodeWriter writer;
    int bits = 9;
    std::uint32_t maxCode = (1u << bits) - 1;
    std::uint32_t emitted = 0;
    // The reader adds an entry for every code after the first and widens its
    // codes once the next free entry passes the widest code of this width.
    auto emit = [&](std::uint32_t code) {
        const std::uint32_t readerFree = emitted == 0 ? kFirstFree : std::min(kFirstFree + emitted - 1, kCodeLimit);
        while (readerFree > maxCode) {
            writer.startGroup(bits);
            ++bits;
            maxCode = bits == kMaxBits ? kCodeLimit : (1u << bits) - 1;
        }
        writer.put(code, bits);
        ++emitted;
    };
    std::unordered_map<std::uint32_t, std::uint32_t> table;
    std::uint32_t next = kFirstFree;
    std::uint32_t prefix = static_cast<unsigned char>(data[0]);
    for (std::size_t i = 1; i < data.size(); ++i) {
        const std::uint32_t c = static_cast<unsigned char>(data[i]);
        const auto found = table.find(prefix << 8 | c);
        if (found != table.end()) {
            prefix = found->second;
            continue;
        }
        emit(prefix);
        if (next < kCodeLimit) table.emplace(prefix << 8 | c, next++);
        prefix = c;
    }
    emit(prefix);
    return out + writer.bytes();
}

std::string compressFile(const std::string& path) {
    if (!fs::is_regular_file(path)) return "compress: no file " + path;
    testsupport::writeFile(path + ".Z", lzwCompress(testsupport::readFile(path)));
    std::error_code error;
    fs::remove(path, error);
    return error ? "compress: " + error.message() : "";
}

std::string packWithSevenZip(const std::string& format, const std::string& output, const std::string& directory,
                             const std::vector<std::string>& members,
                             const std::vector<std::pair<std::string, std::string>>& renames) {
    if (format == "gzip") return runSevenZip({"a", "-tgzip", "-y", output, members.front()}, directory);
    if (format == "zip") {
        if (members.empty()) return "zip has nothing to pack";
        std::vector<std::string> arguments = {"a", "-tzip", "-y", output};
        arguments.insert(arguments.end(), members.begin(), members.end());
        return runSevenZip(arguments, directory);
    }
    if (format != "tar" && format != "tgz") return "unknown packing " + format;

    // A tgz is a tar inside gzip, which names it after the archive. The tar
    // is made in a folder of its own with a short path: the runtime's tree
    // removal goes astray on paths past MAX_PATH.
    static unsigned serial = 0;
    const std::string parts = nativePath((fs::temp_directory_path() / ("odb2vrn_pack_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(serial++))).string());
    const std::string tar = format == "tar" ? output : parts + "\\" + fs::path(output).stem().string() + ".tar";
    std::error_code error;
    fs::create_directories(parts, error);
    std::string failure;
    if (members.empty()) {
        testsupport::writeFile(tar, std::string(10240, '\0'));  // an empty archive: end blocks only
    } else {
        std::vector<std::string> arguments = {"a", "-ttar", "-y", tar};
        arguments.insert(arguments.end(), members.begin(), members.end());
        failure = runSevenZip(arguments, directory);
    }
    for (const auto& [member, stored] : renames) {
        if (failure.empty()) failure = runSevenZip({"rn", "-y", tar, member, stored}, directory);
    }
    if (failure.empty() && format == "tgz") failure = runSevenZip({"a", "-tgzip", "-y", output, tar}, directory);
    fs::remove_all(parts, error);
    return failure;
}

}  // namespace e2e
