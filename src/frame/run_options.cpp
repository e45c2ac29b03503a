#include "frame/run_options.h"

#include <cstdio>
#include <cstring>

#include "platform/platform.h"

namespace {

// Takes the variable's directory when its full path is a directory.
bool chooseTempDirectory(RunOptions& options, const char* variable) {
    const char* value = platform::environmentValue(variable);
    char full[kPathArea];
    bool isDirectory = false;
    if (!platform::fullPath(full, value == nullptr ? "" : value, kPathArea)) return false;
    if (!platform::statPath(full, &isDirectory) || !isDirectory) return false;
    options.tempDirectory.assign(full);
    options.tempDirectoryChosen = true;
    return true;
}

// Index of the last separator, scanning down to index 1 (index 0 is never
// tested); 0 when there is none.
int lastSeparatorIndex(const char* text, const char* stops) {
    int n = static_cast<int>(std::strlen(text)) - 1;
    if (n < 0) n = 0;
    while (n > 0 && std::strchr(stops, text[n]) == nullptr) --n;
    return n;
}

}  // namespace

RunOptions::RunOptions() {
    currentDirectory.setLength(kTextArea);
    platform::currentDirectory(currentDirectory.buffer(), kTextArea);
    const std::int32_t length = currentDirectory.length();
    if (length > 0 && platform::isPathSeparator(currentDirectory.buffer()[length - 1])) {
        currentDirectory.buffer()[length - 1] = '\0';  // a root: "C:" or ""
    }
    outputDirectory.assign(currentDirectory);
    if (chooseTempDirectory(*this, "TMP")) return;
    if (chooseTempDirectory(*this, "TEMP")) return;
    tempDirectory.assign(currentDirectory);
}

int checkOutputPath(const char* path, char* directoryOut) {
    char full[kPathArea];
    if (!platform::fullPath(full, path, kPathArea)) return 1;
    if (platform::statPath(full, nullptr)) return 2;
    std::memcpy(directoryOut, full, std::strlen(full) + 1);
    const int n = lastSeparatorIndex(directoryOut, "\\/");
    if (n == 2 && directoryOut[1] == ':') {
        directoryOut[3] = '\0';  // a drive root keeps its separator: "C:\"
    } else if (n == 0 && platform::isPathSeparator(directoryOut[0])) {
        directoryOut[1] = '\0';  // the POSIX root likewise: "/"
    } else {
        directoryOut[n] = '\0';
    }
    bool isDirectory = false;
    if (!platform::statPath(directoryOut, &isDirectory)) return 3;
    return isDirectory ? 0 : 4;
}

int extractFileName(const char* path, char* nameOut) {
    char full[kPathArea];
    if (!platform::fullPath(full, path, kPathArea)) return 1;
    int n = lastSeparatorIndex(full, "\\/");
    if (platform::isPathSeparator(full[n])) ++n;
    std::memcpy(nameOut, full + n, std::strlen(full + n) + 1);
    return nameOut[0] == '\0' ? 2 : 0;
}

TextString stripExtension(TextString name) {
    TextString copy(name);
    const int n = lastSeparatorIndex(copy.buffer(), "\\./");
    if (copy.buffer()[n] == '.') copy.buffer()[n] = '\0';
    return copy;
}

namespace {

const char* checkOutputMessage(int code) {
    switch (code) {
        case 1: return "Error: Invalid outputfile\n";
        case 2: return "Error: Outputfile already exists\n";
        case 3: return "Error: Outputdirectory does not exist\n";
        case 4: return "Error: Given outputdirectory is not a directory but a file!";
        default: return "Error: Internal program error";
    }
}

const char* extractNameMessage(int code) {
    switch (code) {
        case 1: return "Error: Invalid outputfile\n";
        case 2: return "Error: outputfile is empty\n";
        default: return "Error: Internal program error";
    }
}

}  // namespace

namespace {

// The -o option's file: the output file, and the temporary tree's parent
// unless TMP or TEMP chose one. False, with its message printed, when it
// can't be written.
bool takeOutputFile(RunOptions& options, const char* path) {
    options.outputFile.assign(path);
    char directory[kPathArea];
    const int pathCode = checkOutputPath(options.outputFile.text(), directory);
    if (pathCode != 0) {
        std::printf("%s", checkOutputMessage(pathCode));
        return false;
    }
    options.outputDirectory.assign(directory);
    if (!options.tempDirectoryChosen) {
        options.tempDirectory.assign(options.outputDirectory);
        options.tempDirectoryChosen = true;
    }
    char name[kPathArea];
    const int nameCode = extractFileName(options.outputFile.text(), name);
    if (nameCode != 0) {
        std::printf("%s", extractNameMessage(nameCode));
        return false;
    }
    return true;
}

}  // namespace

bool parseArguments(RunOptions& options, int argc, const char* const* argv) {
    if (argc < 2) return false;
    options.inputFile.assign(argv[1]);

    bool isDirectory = false;
    if (!platform::statPath(options.inputFile.text(), &isDirectory)) {
        std::printf("\nInput file \"%s\" not found\n", platform::asWritten(options.inputFile.text()).c_str());
        return false;
    }
    if (isDirectory) {
        // No line end: the banner's blank first line ends it.
        std::printf("Error: Given inputfile is a directory");
        return false;
    }

    char name[kPathArea];
    const int nameCode = extractFileName(options.inputFile.text(), name);
    if (nameCode == 0) {
        options.baseName.assign(name);
    } else if (nameCode == 1) {
        std::printf("Error: Invalid inputfile\n");
        return false;
    }
    options.baseName.assign(stripExtension(options.baseName));

    const TextString stem = options.currentDirectory + platform::kPathSeparatorText + options.baseName;
    options.outputFile.assign(stem + ".vrn");
    options.logFile.assign(stem + ".log");

    for (int i = 2; i < argc; i += 2) {
        const char* arg = argv[i];
        if (arg[0] != '-') {
            std::printf("Error: %s unknown argument\n\n", platform::asWritten(arg).c_str());
            return false;
        }
        if (arg[1] != 'o') {
            // A lone "-" reaches here with its terminating zero as the option;
            // a character past ASCII shows the first byte it is written with.
            std::printf("Error: -%c unknown option\n\n", platform::asWritten(arg)[1]);
            return false;
        }
        if (i + 1 >= argc || argv[i + 1][0] == '-') {
            std::printf("Error: No output file specified\n");
            return false;
        }
        if (!takeOutputFile(options, argv[i + 1])) return false;
    }
    return true;
}
