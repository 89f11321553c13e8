// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Runs one golden case: draws what its command.txt says with the built program and compares the picture with the
// expected one. With --same-as MODULE it draws the case with that module too, and no pixel may differ at all; the
// expected picture is then not looked at. Knows the program by its command line alone. Exit codes: 0 close, 1 different
// or failed, 77 skipped for want of an OpenGL driver.
//
// A case is a folder with command.txt, its inputs and expected.EXT. command.txt holds comment lines (#), one line of
// arguments for the program in which files are named as they lie in the folder and the result is "actual.EXT", and
// perhaps, with the reason in a comment, lines that replace one of the numbers of tolerance.txt ("percent 2").

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"

using namespace umbrant::host;

namespace {

namespace fs = std::filesystem;

constexpr int kSkipped = 77;

struct Arguments {
    std::string program;
    fs::path caseFolder;
    fs::path workFolder;
    std::string renderer = "gl";  ///< or "cpu"
    std::string sameAs;           ///< another module, or none
    bool rebase = false;
};

struct Case {
    std::vector<std::string> command;
    std::map<std::string, std::string> tolerance;
    std::string extension;  ///< of the result
};

struct Outcome {
    int code = -1;
    std::string text;
};

/// Runs the program; `text` is all that it printed.
Outcome Run(const Arguments& arguments, std::vector<std::string> words) {
    words.insert(words.begin(), arguments.program);
    ProgramStart start;
    start.errors = Stream::AsOutput();
    const ProgramRun run = RunProgram(words, start);
    return {run.code, run.output + run.errors};
}

/// The value behind a label in the program's `info`.
std::string InfoLine(const std::string& info, const std::string& label) {
    std::istringstream lines(info);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(label + " ", 0) != 0) continue;
        return line.substr(line.find_first_not_of(' ', label.size()));
    }
    return "unknown";
}

/// Reads lines of a tolerance file or a case; false when the line is not one of the numbers.
bool ReadTolerance(const std::string& line, std::map<std::string, std::string>& tolerance) {
    std::istringstream words(line);
    std::string name, value, more;
    if (!(words >> name >> value) || words >> more) return false;
    if (name != "warn" && name != "percent" && name != "hardware-percent" && name != "hard") return false;
    tolerance[name] = value;
    return true;
}

bool ReadCase(const Arguments& arguments, Case& golden) {
    std::ifstream defaults(arguments.caseFolder.parent_path() / "tolerance.txt");
    for (std::string line; std::getline(defaults, line);) {
        if (!line.empty() && line[0] != '#' && !ReadTolerance(line, golden.tolerance)) return false;
    }
    std::ifstream command(arguments.caseFolder / "command.txt");
    for (std::string line; std::getline(command, line);) {
        if (line.empty() || line[0] == '#' || ReadTolerance(line, golden.tolerance)) continue;
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            if (word.rfind("actual.", 0) == 0) {
                golden.extension = word.substr(6);
                word = (arguments.workFolder / word).string();
            } else if (fs::exists(arguments.caseFolder / word)) {
                word = (arguments.caseFolder / word).string();
            }
            golden.command.push_back(word);
        }
    }
    return golden.tolerance.size() == 4 && !golden.extension.empty();
}

/// Draws the case again with the other module; 0 when no pixel differs. Files are not compared: some hold the time.
int DrawAgain(const Arguments& arguments, const Case& golden, const fs::path& actual) {
    const fs::path first = arguments.workFolder / ("first" + golden.extension);
    fs::rename(actual, first);
    setenv("UMBRANT_MODULE", arguments.sameAs.c_str(), 1);
    const Outcome drawn = Run(arguments, golden.command);
    if (drawn.code != 0) {
        std::cout << "with the other module the program ended with " << drawn.code << ": " << drawn.text;
        return 1;
    }
    const Outcome compared = Run(arguments, {"compare", first.string(), actual.string(), "--straight", "--warn",
                                             "1e-30", "--percent", "0", "--hard", "0"});
    std::cout << compared.text;
    return compared.code;
}

int RunCase(const Arguments& arguments) {
    Case golden;
    if (!ReadCase(arguments, golden)) {
        std::cout << "the case or tolerance.txt cannot be understood: " << arguments.caseFolder << "\n";
        return 1;
    }
    fs::remove_all(arguments.workFolder);
    fs::create_directories(arguments.workFolder);
    setenv("UMBRANT_RENDERER", arguments.renderer.c_str(), 1);
    // Mesa's software renderer mixes the texels of an 8-bit texture in 8 bits by default; the expected
    // pictures are of full precision.
    setenv("GALLIVM_PERF", "no_aos_sampling", 1);
    std::string renderer = "the processor";
    if (arguments.renderer == "gl") {
        const Outcome info = Run(arguments, {"info"});
        renderer = InfoLine(info.text, "Renderer");
        if (renderer.find("llvmpipe") == std::string::npos) {
            golden.tolerance["percent"] = golden.tolerance["hardware-percent"];
        }
        if (info.code == 0 && renderer == "NULL") {
            std::cout << "skipped: no OpenGL driver, the effect's GPU rows read NULL\n";
            return kSkipped;
        }
    }

    const fs::path actual = arguments.workFolder / ("actual" + golden.extension);
    const fs::path expected = arguments.caseFolder / ("expected" + golden.extension);
    const fs::path difference = arguments.workFolder / "diff.png";
    const Outcome drawn = Run(arguments, golden.command);
    if (drawn.code != 0) {
        std::cout << "the program ended with " << drawn.code << ": " << drawn.text;
        return 1;
    }
    if (!arguments.sameAs.empty()) return DrawAgain(arguments, golden, actual);
    if (arguments.rebase) {
        fs::copy_file(actual, expected, fs::copy_options::overwrite_existing);
        std::cout << "wrote " << expected.string() << " with " << renderer << "\n";
        return 0;
    }
    const Outcome compared = Run(
        arguments, {"compare", actual.string(), expected.string(), "--warn", golden.tolerance["warn"], "--percent",
                    golden.tolerance["percent"], "--hard", golden.tolerance["hard"], "--diff", difference.string()});
    std::cout << compared.text << "renderer: " << renderer << "\n";
    if (compared.code == 0) return 0;
    std::cout << "actual:     " << actual.string() << "\nexpected:   " << expected.string()
              << "\ndifference: " << difference.string() << "\n";
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--rebase") {
            arguments.rebase = true;
        } else if (i + 1 < argc && word == "--renderer") {
            arguments.renderer = argv[++i];
        } else if (i + 1 < argc && word == "--same-as") {
            arguments.sameAs = argv[++i];
        } else if (i + 1 < argc && word == "--program") {
            arguments.program = argv[++i];
        } else if (i + 1 < argc && word == "--case") {
            arguments.caseFolder = argv[++i];
        } else if (i + 1 < argc && word == "--work") {
            arguments.workFolder = argv[++i];
        } else {
            std::cerr << "usage: golden_runner --program UMBRANT --case FOLDER --work FOLDER [--renderer gl|cpu] "
                         "[--same-as MODULE] [--rebase]\n";
            return 2;
        }
    }
    if (arguments.program.empty() || arguments.caseFolder.empty() || arguments.workFolder.empty()) return 2;
    return RunCase(arguments);
}
