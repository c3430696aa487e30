// What the tests of the example share: a folder of their own, files, and the program as a user runs it.
#pragma once

#include "examples/slope/Document.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace example {

std::string ReadFile(std::string const& path);
void WriteFile(std::string const& path, std::string const& text);

/// What a command has to print, from the folder of expected outputs.
std::string Expected(std::string const& name);

/// Replaces the one place in a file that holds `from`; the test fails if there is none, or more.
void Replace(std::string const& path, std::string const& from, std::string const& to);

struct Outcome {
    int exitStatus = -1;
    std::string out;
    std::string err;
};

/// Runs a program, looked for as a shell does, with `input` on its standard input.
Outcome Run(std::string const& program, std::vector<std::string> const& words, std::string const& input = {});
/// Runs the application's program with its own command line.
Outcome Slope(std::vector<std::string> const& words, std::string const& input = {});

/// A test with a folder that is gone afterwards.
class FolderTest : public testing::Test {
protected:
    FolderTest();
    ~FolderTest() override;

    std::string File(std::string const& name) const { return folder + "/" + name; }

    std::string folder;
};

/// A test on the command line with a file of its own.
class FileTest : public FolderTest {
protected:
    /// Makes the file from a published problem.
    void Import(std::string const& problem);

    std::string file = File("slope.xml");
};

/// A test on a document with a published problem.
class ProblemTest : public FolderTest {
protected:
    void Import(std::string const& problem);

    slope::Document document;
};

/// Whether `text` holds `part`; both are shown if it doesn't.
testing::AssertionResult Holds(std::string const& text, std::string const& part);

} // namespace example
