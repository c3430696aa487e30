#include "tests/example/Support.h"

#include "examples/slope/Import.h"
#include "examples/slope/Text.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace example {

std::string ReadFile(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(std::string const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    EXPECT_TRUE(file.flush()) << path;
}

std::string Expected(std::string const& name) { return ReadFile(std::string(SLOPE_EXPECTED_FOLDER "/") + name); }

void Replace(std::string const& path, std::string const& from, std::string const& to) {
    std::string text = ReadFile(path);
    std::size_t const place = text.find(from);
    ASSERT_NE(place, std::string::npos) << from << " isn't in\n" << text;
    ASSERT_EQ(text.find(from, place + 1), std::string::npos) << from << " is twice in\n" << text;
    WriteFile(path, text.replace(place, from.size(), to));
}

Outcome Run(std::string const& program, std::vector<std::string> const& words, std::string const& input) {
    std::string pattern = testing::TempDir() + "slope-run-XXXXXX";
    if (!mkdtemp(pattern.data())) return {};
    std::string const outPath = pattern + "/out", errPath = pattern + "/err", inPath = pattern + "/in";
    WriteFile(inPath, input);

    std::vector<std::string> all{program};
    all.insert(all.end(), words.begin(), words.end());
    std::vector<char*> arguments;
    for (std::string& word : all) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    Outcome outcome;
    if (pid_t const child = fork(); child == 0) {
        int const in = open(inPath.c_str(), O_RDONLY);
        int const out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        int const err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (dup2(in, STDIN_FILENO) < 0 || dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0) _exit(126);
        execvp(arguments[0], arguments.data());
        _exit(127);
    } else if (child > 0) {
        int status = 0;
        if (waitpid(child, &status, 0) == child && WIFEXITED(status)) outcome.exitStatus = WEXITSTATUS(status);
        outcome.out = ReadFile(outPath);
        outcome.err = ReadFile(errPath);
    }
    std::filesystem::remove_all(pattern);
    return outcome;
}

Outcome Slope(std::vector<std::string> const& words, std::string const& input) {
    return Run(SLOPE_EXECUTABLE, words, input);
}

FolderTest::FolderTest() : folder(testing::TempDir() + "slope-test-XXXXXX") {
    if (!mkdtemp(folder.data())) ADD_FAILURE() << "no folder " << folder;
}

FolderTest::~FolderTest() {
    std::error_code ignored; // a leftover among temporary files fails no test
    std::filesystem::remove_all(folder, ignored);
}

void FileTest::Import(std::string const& problem) {
    Outcome const outcome = Slope({"import", problem, file});
    ASSERT_EQ(outcome.exitStatus, 0) << outcome.err;
}

void ProblemTest::Import(std::string const& problem) {
    slope::Project project;
    htl::status const failure = slope::ImportProblem(slope::DefaultDataFolder(), problem, project);
    ASSERT_FALSE(failure.IsError()) << slope::Message(failure);
    document.SetContent(std::move(project));
}

testing::AssertionResult Holds(std::string const& text, std::string const& part) {
    if (text.find(part) != std::string::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '"' << part << "\" isn't in\n" << text;
}

} // namespace example
