// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The main function of every GoogleTest program. It adds two things that a program needs which CTest runs as one entry:
// a filter that matches no case is a failure, and a process that ends in the middle of a case leaves that case's name.
// A program whose cases were all skipped ends with 77.

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace {

/// Keeps the name of the case that runs in a file beside the JUnit report, until the program ends by itself. GoogleTest
/// writes the report at the end only, so a crash, `exit` or a kill leaves no report; tools/test_report then reads the
/// name from here.
class RunningCase : public testing::EmptyTestEventListener {
 public:
    explicit RunningCase(std::filesystem::path file) : file_(std::move(file)) {}

    void OnTestProgramStart(const testing::UnitTest&) override {
        std::error_code ignored;
        std::filesystem::create_directories(file_.parent_path(), ignored);
        Note("(before the first case)");
    }
    void OnTestStart(const testing::TestInfo& test) override {
        Note(std::string(test.test_suite_name()) + "." + test.name());
    }
    void OnTestProgramEnd(const testing::UnitTest&) override { std::filesystem::remove(file_); }

 private:
    void Note(const std::string& name) const { std::ofstream(file_, std::ios::trunc) << name << "\n"; }

    std::filesystem::path file_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    // Where the program was not built, its commands start themselves as a module's process: all cases again, in each of
    // them again, until the machine has no memory.
    if (argc > 1 && std::string(argv[1]) == "--module-process") {
        std::fprintf(stderr, "A test program serves no module; build the program 'umbrant' first.\n");
        return 2;
    }
    testing::UnitTest& program = *testing::UnitTest::GetInstance();
    const std::string output = testing::GTEST_FLAG(output);
    const std::string kind = "xml:";
    if (output.starts_with(kind)) {
        // The listeners own it.
        program.listeners().Append(new RunningCase(output.substr(kind.size()) + ".running"));
    }
    const int result = RUN_ALL_TESTS();
    if (testing::GTEST_FLAG(list_tests)) return result;
    if (program.test_to_run_count() == 0) {
        std::fprintf(stderr, "No case of this program matches the filter '%s'.\n",
                     std::string(testing::GTEST_FLAG(filter)).c_str());
        return 1;
    }
    // What CTest shows as skipped.
    constexpr int kAllSkipped = 77;
    return result == 0 && program.successful_test_count() == 0 ? kAllSkipped : result;
}
