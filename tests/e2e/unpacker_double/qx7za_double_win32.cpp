// Windows twin of the test double qx7za.exe (the shell script beside this
// file, which tells what the double does). Its arguments come split by the
// C runtime, so calls.log shows what the converter's command line means to a
// Windows program. "7zz" runs the real qx7za.exe of the build; "tar" has no
// Windows counterpart and fails with 99, as an unknown action does.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

namespace {

std::string besideMe(const char* name) {
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
    std::string directory(path, length);
    return directory.substr(0, directory.find_last_of("\\/") + 1) + name;
}

std::string quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
    std::string result = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        result.append(c == '"' ? backslashes * 2 + 1 : backslashes, '\\');
        backslashes = 0;
        result += c;
    }
    result.append(backslashes * 2, '\\');
    return result + "\"";
}

int runRealUnpacker(int argc, char** argv) {
    std::string line = quoted(ODB2VRN_REAL_UNPACKER);
    for (int i = 1; i < argc; ++i) line += " " + quoted(argv[i]);
    STARTUPINFOA startup;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started;
    std::memset(&started, 0, sizeof started);
    if (!CreateProcessA(nullptr, &line[0], nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                        &started)) {
        return 98;
    }
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = 97;
    GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return static_cast<int>(code);
}

bool endsWith(const std::string& text, const char* end) {
    const std::size_t length = std::strlen(end);
    return text.size() >= length && text.compare(text.size() - length, length, end) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        // The probe: the converter must not wait for it. Longer than the
        // script's 5 s, as the driver allows Wine 10 s more per run.
        Sleep(60000);
        return 0;
    }
    std::string call;
    for (int i = 1; i < argc; ++i) call += std::string(i > 1 ? " [" : "[") + argv[i] + "]";
    std::ofstream(besideMe("calls.log"), std::ios::binary | std::ios::app) << call << '\n';

    const std::string source = argc > 2 ? argv[2] : "";
    const std::string kind = endsWith(source, ".Z") || endsWith(source, ".z") ? "expand" : "unpack";
    std::string action = "7zz";
    std::string code;
    std::ifstream behaviour(besideMe("behaviour"));
    for (std::string text; std::getline(behaviour, text);) {
        std::istringstream words(text);
        std::string which, what, exitCode;
        words >> which >> what >> exitCode;
        if (which == kind) {
            action = what;
            code = exitCode;
        } else if (which == "create" && kind == "unpack") {
            std::ofstream(what, std::ios::binary) << "made while the archive was unpacked\n";
        }
    }

    int status = 0;
    if (action == "7zz") status = runRealUnpacker(argc, argv);
    else if (action != "none") status = 99;
    return code.empty() ? status : std::atoi(code.c_str());
}
