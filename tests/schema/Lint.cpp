#include "tests/schema/Lint.h"

#include "Common/schema/Xsd.h"
#include "Common/xml/Write.h"
#include "tests/schema/Files.h"

#include "support/text.h"

#include <cerrno>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lint {
namespace {

struct Verdict {
    int code; // as xmllint exits: 0 valid, 1 not well-formed, 3 not valid, 5 the schema is none
    std::string messages;
};

Verdict Judge(std::string const& document, std::string const& schema) {
    std::string const documentPath = files::Path("document.xml");
    std::string const schemaPath = files::Path("schema.xsd");
    std::string const messages = files::Path("messages.txt");
    files::Store(documentPath, document);
    files::Store(schemaPath, schema);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::string arguments[] = {"xmllint", "--noout", "--nonet", "--huge", "--schema", schemaPath, documentPath};
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    int const failure = ::posix_spawnp(&child, "xmllint", &actions, nullptr, argv.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) return {-1, "xmllint can't be started: it comes with the package libxml2-utils"};
    int state = 0;
    while (::waitpid(child, &state, 0) < 0 && errno == EINTR) {
    }
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -1, files::Bytes(messages)};
}

testing::AssertionResult Unless(int expected, std::string const& document, std::string const& schema) {
    Verdict const verdict = Judge(document, schema);
    if (verdict.code == expected) return testing::AssertionSuccess();
    constexpr std::size_t enough = 4000;
    return testing::AssertionFailure() << "xmllint gave " << verdict.code << ": " << verdict.messages.substr(0, enough)
                                       << "\n"
                                       << document.substr(0, enough) << "\n"
                                       << schema.substr(0, enough);
}

} // namespace

std::string Schema() {
    std::string schema;
    htl::status const result = zo::schema::XsdText(schema);
    EXPECT_FALSE(result.IsError()) << str::as_cstring(result.AsWString());
    return schema;
}

std::string Document(std::vector<std::wstring> const* filter) {
    std::wstring text;
    htl::status const result = zo::xml::StringWrite(text, hzn::version::NumberKind<0>{12, 3}, 0, filter);
    EXPECT_FALSE(result.IsError()) << str::as_cstring(result.AsWString());
    str::replace_all(text, L"encoding=\"UTF-16\"", L"encoding=\"UTF-8\"");
    return str::as_cstring(text);
}

testing::AssertionResult IsValid(std::string const& document, std::string const& schema) {
    return Unless(0, document, schema);
}

testing::AssertionResult IsRefused(std::string const& document, std::string const& schema) {
    return Unless(3, document, schema);
}

testing::AssertionResult SavesWhatItsSchemaTells(std::vector<std::wstring> const* filter) {
    return IsValid(Document(filter), Schema());
}

std::string With(std::string text, std::string const& from, std::string const& to) {
    std::size_t const at = text.find(from);
    if (at == text.npos)
        ADD_FAILURE() << "no " << from << " in " << text;
    else
        text.replace(at, from.size(), to);
    return text;
}

} // namespace lint
