// Writing files: what takes the place of what, and what stays when it fails.
#include "Documents.h"
#include "support/xml/AtomicFile.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

using namespace documents;
namespace fs = std::filesystem;

namespace {

std::string const oldContent = "the old file, as it was";

class XmlFileTest : public testing::Test {
protected:
    XmlFileTest() {
        std::string name = testing::TempDir() + "zo-xml-XXXXXX";
        directory = ::mkdtemp(name.data());
        fs::permissions(directory, fs::perms(0755)); // for the test that gives up its rights
    }
    ~XmlFileTest() override { fs::remove_all(directory); }

    static std::wstring Name(fs::path const& path) { return path.wstring(); }
    fs::path Target() const { return directory / "soils.xml"; }

    // The names in the directory.
    std::vector<std::string> Entries() const {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(directory)) names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    static htl::status Write(fs::path const& path, Node const& root) {
        return sys::file::XmlFileWrite(Name(path), WriterOf(root));
    }

    // Expects that nothing happened to an old target.
    void ExpectUntouched() const {
        EXPECT_EQ(FileText(Target()), oldContent);
        EXPECT_EQ(Entries(), std::vector<std::string>{"soils.xml"});
    }

    fs::path directory;
    Node model = {L"Model", {}, L"", {{L"Soil", {}, L"clay", {}}}};
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Model>\n  <Soil>clay</Soil>\n</Model>\n";
};

// Files of this process can't grow beyond a size while this lives: the next best thing to a disk that is full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        rlimit limit = old;
        limit.rlim_cur = size;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, handler);
    }

private:
    void (*handler)(int);
    rlimit old = {};
};

// Runs `check` in a process of its own without the rights of the superuser, as a member of `group` if this is one.
// Whether it said true.
template <class F>
bool HoldsWithoutRights(F&& check, gid_t group = 65534) {
    pid_t const child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgroups(1, &group) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        ::_exit(check() ? 0 : 1);
    }
    int state = 0;
    ::waitpid(child, &state, 0);
    return WIFEXITED(state) && WEXITSTATUS(state) == 0;
}

// A cursor over many elements that holds none of them. Its texts are short enough to need no memory of their own, so
// that what is measured is the writer's.
class ManySoils final : public XmlElemWriter {
public:
    explicit ManySoils(std::size_t soils) : count(soils) {}
    std::wstring Tag() override { return started ? L"S" : L"M"; }
    std::wstring Text() override { return {}; }
    std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override {
        if (!started) return {nullptr, nullptr};
        return {soil, soil + 2};
    }
    htl::handle<XmlElemWriter> FirstChild() override {
        if (std::exchange(started, true)) return {};
        return htl::handle<XmlElemWriter>(this);
    }
    htl::handle<XmlElemWriter> Next() override {
        return --count == 0 ? htl::handle<XmlElemWriter>() : htl::handle<XmlElemWriter>(this);
    }

private:
    std::size_t count;
    bool started = false;
    XmlAttribute const soil[2] = {{L"Name", L"Clay with silt and gravel"}, {L"Cohesion", L"12.5"}};
};

} // namespace

TEST_F(XmlFileTest, WritesANewFileAndReadsItBack) {
    ASSERT_FALSE(Write(Target(), model).IsError());
    EXPECT_EQ(FileText(Target()), document);
    EXPECT_EQ(Entries(), std::vector<std::string>{"soils.xml"});
    Node read;
    ASSERT_FALSE(sys::file::XmlFileRead(Name(Target()), htl::handle<XmlElemReader>(new TreeReader(read))).IsError());
    EXPECT_EQ(read.children, model.children);
}

TEST_F(XmlFileTest, NewFileHasTheModeThatTheMaskLeaves) {
    mode_t const before = ::umask(027);
    htl::status const failure = Write(Target(), model);
    ::umask(before);
    ASSERT_FALSE(failure.IsError());
    EXPECT_EQ(fs::status(Target()).permissions(), fs::perms(0640));
}

TEST_F(XmlFileTest, ReplacedFileKeepsItsMode) {
    MakeFile(Target(), oldContent);
    fs::permissions(Target(), fs::perms(0604));
    ASSERT_FALSE(Write(Target(), model).IsError());
    EXPECT_EQ(FileText(Target()), document);
    EXPECT_EQ(fs::status(Target()).permissions(), fs::perms(0604));
}

TEST_F(XmlFileTest, WhoHasTheOldFileOpenGoesOnReadingIt) {
    MakeFile(Target(), oldContent);
    std::ifstream open(Target(), std::ios::binary);
    ASSERT_FALSE(Write(Target(), model).IsError());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(open), {}), oldContent);
    EXPECT_EQ(FileText(Target()), document);
}

TEST_F(XmlFileTest, RelativeNamesAndNamesBeyondAsciiWork) {
    fs::path const before = fs::current_path();
    fs::current_path(directory);
    EXPECT_FALSE(Write("soils.xml", model).IsError());
    EXPECT_FALSE(sys::file::XmlFileWrite(L"B\u00F6den \U0001D400.xml", WriterOf(model)).IsError());
    fs::current_path(before);
    EXPECT_EQ(Entries(), (std::vector<std::string>{"B\xC3\xB6"
                                                   "den \xF0\x9D\x90\x80.xml",
                                                   "soils.xml"}));
}

TEST_F(XmlFileTest, LongestNameThatTheSystemTakesWorks) {
    std::string const name(255, 'n');
    ASSERT_FALSE(Write(directory / name, model).IsError());
    EXPECT_EQ(Entries(), std::vector<std::string>{name});
}

TEST_F(XmlFileTest, SymbolicLinksAreFollowedAndStay) {
    fs::create_directory(directory / "store");
    MakeFile(directory / "store" / "real.xml", oldContent);
    fs::create_symlink("store/real.xml", directory / "inner.xml");
    fs::create_symlink(directory / "inner.xml", Target());
    ASSERT_FALSE(Write(Target(), model).IsError());
    EXPECT_TRUE(fs::is_symlink(Target()));
    EXPECT_TRUE(fs::is_symlink(directory / "inner.xml"));
    EXPECT_FALSE(fs::is_symlink(directory / "store" / "real.xml"));
    EXPECT_EQ(FileText(directory / "store" / "real.xml"), document);
}

TEST_F(XmlFileTest, LinkToAFileThatIsNotThereMakesIt) {
    fs::create_symlink("real.xml", Target());
    ASSERT_FALSE(Write(Target(), model).IsError());
    EXPECT_TRUE(fs::is_symlink(Target()));
    EXPECT_EQ(FileText(directory / "real.xml"), document);
}

TEST_F(XmlFileTest, LinksInACircleAreRefused) {
    fs::create_symlink("b.xml", directory / "a.xml");
    fs::create_symlink("a.xml", directory / "b.xml");
    EXPECT_TRUE(FailsAs(Write(directory / "a.xml", model), 90003, Name(directory / "a.xml"),
                        "Too many levels of symbolic links"));
    EXPECT_EQ(Entries(), (std::vector<std::string>{"a.xml", "b.xml"}));
}

TEST_F(XmlFileTest, PlacesWhereNoFileCanBeAreRefused) {
    MakeFile(Target(), oldContent);
    struct Row {
        fs::path path;
        char const* reason;
    };
    Row const table[] = {
        {directory / "gone" / "soils.xml", "No such file or directory"},
        {directory, "Is a directory"},
        {directory.string() + "/", "Is a directory"},
        {directory / "gone" / "", "Is a directory"},
        {directory / "..", "Is a directory"},
        {Target() / "soils.xml", "Not a directory"},
        {directory / std::string(256, 'n'), "File name too long"},
        {"/proc/soils.xml", "No such file or directory"},
        {"", "No such file or directory"},
    };
    for (Row const& row : table)
        EXPECT_TRUE(FailsAs(Write(row.path, model), 90003, Name(row.path), row.reason)) << row.path;
    EXPECT_TRUE(sys::file::XmlFileWrite(std::wstring(L"a\0b", 3), WriterOf(model)).Is(90011));
    ExpectUntouched();
}

TEST_F(XmlFileTest, DirectoryThatGoesAwayMeanwhileIsTold) {
    fs::path const inner = directory / "inner";
    fs::create_directory(inner);
    sys::file::AtomicFile file;
    ASSERT_FALSE(file.Open(Name(inner / "soils.xml")).IsError());
    ASSERT_FALSE(file.Write("x", 1).IsError());
    fs::remove_all(inner);
    EXPECT_TRUE(FailsAs(file.Commit(), 90003, Name(inner / "soils.xml"), "No such file or directory"));
    EXPECT_EQ(Entries(), std::vector<std::string>{});
}

TEST_F(XmlFileTest, TargetThatBecomesADirectoryMeanwhileStays) {
    sys::file::AtomicFile file;
    ASSERT_FALSE(file.Open(Name(Target())).IsError());
    fs::create_directory(Target());
    EXPECT_TRUE(FailsAs(file.Commit(), 90003, Name(Target()), "Is a directory"));
    EXPECT_TRUE(fs::is_directory(Target()));
    EXPECT_EQ(Entries(), std::vector<std::string>{"soils.xml"});
}

TEST_F(XmlFileTest, FullDiskLeavesTheOldFile) {
    MakeFile(Target(), oldContent);
    htl::status failure;
    {
        FileSizeLimit const limit(100 * 1000);
        failure = sys::file::XmlFileWrite(Name(Target()), htl::handle<XmlElemWriter>(new ManySoils(100000)));
    }
    EXPECT_TRUE(FailsAs(failure, 90003, Name(Target()), "File too large"));
    ExpectUntouched();
}

TEST_F(XmlFileTest, FullDiskLeavesNoNewFile) {
    htl::status failure;
    {
        FileSizeLimit const limit(10);
        failure = Write(Target(), model);
    }
    EXPECT_TRUE(FailsAs(failure, 90003, Name(Target()), "File too large"));
    EXPECT_EQ(Entries(), std::vector<std::string>{});
}

TEST_F(XmlFileTest, FailureOfAWriteEndsThePullingOfTheDocument) {
    struct Endless final : XmlElemWriter {
        bool started = false;
        std::wstring Tag() override { return L"Soil"; }
        std::wstring Text() override { return {}; }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override { return htl::handle<XmlElemWriter>(this); }
        htl::handle<XmlElemWriter> FirstChild() override {
            return std::exchange(started, true) ? htl::handle<XmlElemWriter>() : htl::handle<XmlElemWriter>(this);
        }
    };
    EXPECT_TRUE(FailsAs(sys::file::XmlFileWrite(L"/dev/full", htl::handle<XmlElemWriter>(new Endless)), 90003,
                        L"/dev/full", "No space left on device"));
}

TEST_F(XmlFileTest, DevicesAndPipesAreWrittenDirectly) {
    EXPECT_FALSE(sys::file::XmlFileWrite(L"/dev/null", WriterOf(model)).IsError());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));

    ASSERT_EQ(::mkfifo(Target().c_str(), 0600), 0);
    std::string received;
    std::thread reader([&] { received = FileText(Target()); });
    htl::status const failure = Write(Target(), model);
    reader.join();
    EXPECT_FALSE(failure.IsError());
    EXPECT_EQ(received, document);
    EXPECT_TRUE(fs::is_fifo(Target()));
}

TEST_F(XmlFileTest, LinkToAnOpenPipeIsWrittenDirectly) {
    int ends[2] = {};
    ASSERT_EQ(::pipe(ends), 0);
    htl::status const failure = sys::file::XmlFileWrite(L"/proc/self/fd/" + std::to_wstring(ends[1]), WriterOf(model));
    ::close(ends[1]);
    std::string received(4096, '\0');
    ssize_t const size = ::read(ends[0], received.data(), received.size());
    ::close(ends[0]);
    EXPECT_FALSE(failure.IsError()) << testing::PrintToString(failure.AsWString());
    EXPECT_EQ(received.substr(0, size < 0 ? 0 : static_cast<std::size_t>(size)), document);
}

TEST_F(XmlFileTest, FileOfAGroupStaysWithItWhoeverSaves) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of others";
    constexpr gid_t group = 4321;
    MakeFile(Target(), oldContent);
    ASSERT_EQ(::chown(Target().c_str(), 1234, group), 0);
    fs::permissions(Target(), fs::perms(0664));
    fs::permissions(directory, fs::perms(0777));
    EXPECT_TRUE(HoldsWithoutRights([&] { return !Write(Target(), model).IsError(); }, group));
    EXPECT_EQ(FileText(Target()), document);
    struct stat saved = {};
    ASSERT_EQ(::stat(Target().c_str(), &saved), 0);
    EXPECT_EQ(saved.st_uid, 65534u);
    EXPECT_EQ(saved.st_gid, group);
    EXPECT_EQ(saved.st_mode & 07777, 0664u);
}

TEST_F(XmlFileTest, MissingRightsLeaveTheOldFile) {
    MakeFile(Target(), oldContent);
    fs::permissions(directory, fs::perms(0555));
    fs::permissions(Target(), fs::perms(0666));
    EXPECT_TRUE(HoldsWithoutRights(
        [&] { return bool(FailsAs(Write(Target(), model), 90003, Name(Target()), "Permission denied")); }));
    fs::permissions(directory, fs::perms(0777));
    fs::permissions(Target(), fs::perms(0444));
    EXPECT_TRUE(HoldsWithoutRights(
        [&] { return bool(FailsAs(Write(Target(), model), 90003, Name(Target()), "Permission denied")); }));
    fs::permissions(Target(), fs::perms(0644));
    ExpectUntouched();
}

TEST_F(XmlFileTest, DocumentThatIsRefusedLeavesTheOldFile) {
    MakeFile(Target(), oldContent);
    EXPECT_TRUE(Write(Target(), {L"", {}, L"", {}}).Is(90010));
    EXPECT_TRUE(Write(Target(), {L"M", {}, L"", {{L"no name", {}, L"", {}}}}).Is(90010));
    ExpectUntouched();
    fs::remove(Target());
    EXPECT_TRUE(Write(Target(), {L"", {}, L"", {}}).Is(90010));
    EXPECT_EQ(Entries(), std::vector<std::string>{});
}

TEST_F(XmlFileTest, ExceptionOfAWriterLeavesTheOldFile) {
    struct Cursor final : XmlElemWriter {
        std::wstring Tag() override { return L"M"; }
        std::wstring Text() override { throw std::runtime_error("the cursor gave up"); }
        std::pair<XmlAttribute const*, XmlAttribute const*> Attributes() override { return {nullptr, nullptr}; }
        htl::handle<XmlElemWriter> Next() override { return {}; }
    };
    MakeFile(Target(), oldContent);
    EXPECT_THROW((void)sys::file::XmlFileWrite(Name(Target()), htl::handle<XmlElemWriter>(new Cursor)),
                 std::runtime_error);
    ExpectUntouched();
}

TEST_F(XmlFileTest, FileWithoutCommitNeverWas) {
    MakeFile(Target(), oldContent);
    {
        sys::file::AtomicFile file;
        ASSERT_FALSE(file.Open(Name(Target())).IsError());
        ASSERT_FALSE(file.Write("new", 3).IsError());
        EXPECT_EQ(Entries().size(), 2u);
    }
    ExpectUntouched();
}

TEST_F(XmlFileTest, FileThatIsNotOpenTakesNothing) {
    sys::file::AtomicFile file;
    EXPECT_TRUE(file.Write("x", 1).Is(90003));
    EXPECT_TRUE(file.Commit().Is(90003));
}

TEST_F(XmlFileTest, MemoryDoesNotGrowWithTheDocument) {
    struct Counter final : XmlElemReader {
        std::size_t soils = 0;
        htl::handle<XmlElemReader> Element(std::wstring const&) override {
            ++soils;
            return htl::handle<XmlElemReader>(this);
        }
    };
    auto const peak = [] {
        rusage usage = {};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // kibibytes
    };
    // In a process of its own, since the peak of this one never falls again.
    fs::permissions(directory, fs::perms(0777));
    EXPECT_TRUE(HoldsWithoutRights([&] {
        constexpr std::size_t count = 1'000'000;
        long const before = peak();
        if (sys::file::XmlFileWrite(Name(Target()), htl::handle<XmlElemWriter>(new ManySoils(count))).IsError())
            return false;
        htl::handle<Counter> const counter(new Counter);
        if (sys::file::XmlFileRead(Name(Target()), counter).IsError()) return false;
        long const growth = peak() - before;
        EXPECT_LT(growth, 8 * 1024);
        return counter->soils == count && growth < 8 * 1024;
    }));
    EXPECT_GT(fs::file_size(Target()), 45u << 20);
}
