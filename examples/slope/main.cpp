// The example application's entry: the command line, and what becomes of failures that nobody expected.

#include "examples/slope/Commands.h"

#include <zo/zo.h>

#include <exception>
#include <iostream>

int main(int argumentCount, char** arguments) {
    try {
        std::vector<std::string> const words(arguments + (argumentCount ? 1 : 0), arguments + argumentCount);
        hzn::version::SetCurrent({.application = {1, 0, 0, 0}}); // documents say which application wrote them
        int const status = slope::RunCommandLine(words, std::cin, std::cout, std::cerr);
        // A full disk behind a pipe shows only now.
        if (!std::cout.flush()) {
            std::cerr << "slope: the output can't be written.\n";
            return slope::exitProblems;
        }
        return status;
    } catch (std::exception const& unexpected) {
        std::cerr << "slope: " << unexpected.what() << '\n';
        return slope::exitProblems;
    }
}
