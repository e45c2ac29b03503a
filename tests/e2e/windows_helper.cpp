// The end-to-end cases' helper on Windows, one program with two uses, told
// apart by its file name:
//
//   qx7za.exe   the unpacker's test double, twin of the script
//               unpacker_double/qx7za.exe (which tells what it does); "real"
//               runs the build's real qx7za.exe, "tar" has no Windows
//               counterpart and fails with 99, "sleep" waits two minutes
//               (an unpack that outlasts a hard kill of the converter). Its
//               arguments come split by the C runtime, so calls.log shows
//               what the converter's command line means to a Windows program.
//   any other   e2e_windows_helper <in> <out> <err> NAME=value... NAME... -- program arguments...
//               sets the variables (%PATH% in a value stands for the current
//               one) or removes them (NAME alone), runs the program with
//               standard input from file <in> and its output to files <out>
//               and <err>, and ends with its exit code. The files are opened
//               here, so that nothing Wine writes itself mixes with them.
//
// Like the converter, it declares UTF-8 as its active code page
// (windows_helper.rc), so that paths past ASCII pass through it whole.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

// The inverse of the C runtime's split: quotes where needed, backslashes
// doubled only before a quote.
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
    return result.append(backslashes * 2, '\\') + "\"";
}

// Runs program with arguments and standard handles, in a job that ends with
// the helper, so a run that the driver stops takes its unpacker runs along.
int run(const std::string& program, char** arguments, int count, const HANDLE (&standard)[3]) {
    std::string line = quoted(program);
    for (int i = 0; i < count; ++i) line += " " + quoted(arguments[i]);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = standard[0];
    startup.hStdOutput = standard[1];
    startup.hStdError = standard[2];
    for (const HANDLE handle : standard) SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    HANDLE job = CreateJobObjectA(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    PROCESS_INFORMATION started = {};
    // Wine, with many runs at once, now and then refuses a start with
    // ERROR_INTERNAL_ERROR (once in a CI run of the Wine suite); nothing of
    // the program began, so it is started again.
    for (int attempt = 1;; ++attempt) {
        if (CreateProcessA(program.c_str(), &line[0], nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED,
                           nullptr, nullptr, &startup, &started))
            break;
        const DWORD error = GetLastError();
        if (error != ERROR_INTERNAL_ERROR || attempt == 5) {
            std::fprintf(stderr, "cannot start %s: error %lu\n", program.c_str(), error);
            return 98;
        }
        Sleep(500);
    }
    AssignProcessToJobObject(job, started.hProcess);
    ResumeThread(started.hThread);
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = 97;
    GetExitCodeProcess(started.hProcess, &code);
    return static_cast<int>(code);
}

int launch(int argc, char** argv) {
    if (argc < 4) return 96;
    HANDLE standard[3];
    for (int i = 0; i < 3; ++i) {
        standard[i] = CreateFileA(argv[i + 1], i == 0 ? GENERIC_READ : GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, i == 0 ? OPEN_EXISTING : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (standard[i] == INVALID_HANDLE_VALUE) return 95;
    }
    int i = 4;
    for (; i < argc && std::string(argv[i]) != "--"; ++i) {
        const std::string entry = argv[i];
        const std::size_t equals = entry.find('=');
        if (equals == std::string::npos) {
            SetEnvironmentVariableA(entry.c_str(), nullptr);
            continue;
        }
        char value[32767];
        ExpandEnvironmentStringsA(entry.substr(equals + 1).c_str(), value, sizeof value);
        SetEnvironmentVariableA(entry.substr(0, equals).c_str(), value);
    }
    return i + 1 < argc ? run(argv[i + 1], argv + i + 2, argc - i - 2, standard) : 96;
}

int unpackerDouble(int argc, char** argv, const std::string& here) {
    if (argc < 2) {
        // The probe: the converter must not wait for it. Longer than the
        // script's 5 s, as the driver allows Wine 10 s more per run.
        Sleep(60000);
        return 0;
    }
    std::string call;
    for (int i = 1; i < argc; ++i) call += std::string(i > 1 ? " [" : "[") + argv[i] + "]";
    std::ofstream(here + "calls.log", std::ios::binary | std::ios::app) << call << '\n';

    const std::string source = argc > 2 ? argv[2] : "";
    const char last = source.size() > 2 && source[source.size() - 2] == '.' ? source.back() : ' ';
    const std::string kind = last == 'Z' || last == 'z' ? "expand" : "unpack";
    std::string action = "real", code;
    std::ifstream behaviour(here + "behaviour");
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
    const HANDLE standard[3] = {GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE), GetStdHandle(STD_ERROR_HANDLE)};
    if (action == "sleep") Sleep(120000);
    const int status = action == "real"                        ? run(ODB2VRN_REAL_UNPACKER, argv + 1, argc - 1, standard)
                       : action == "none" || action == "sleep" ? 0
                                                               : 99;
    return code.empty() ? status : std::atoi(code.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    char path[MAX_PATH];
    const std::string self(path, GetModuleFileNameA(nullptr, path, MAX_PATH));
    const std::size_t name = self.find_last_of("\\/") + 1;
    if (lstrcmpiA(self.c_str() + name, "qx7za.exe") == 0) return unpackerDouble(argc, argv, self.substr(0, name));
    return launch(argc, argv);
}
