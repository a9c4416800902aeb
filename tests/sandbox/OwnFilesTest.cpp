// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sandbox/CardService.h"
#include "sandbox/OwnFile.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane::sandbox {
namespace {

using ::testing::HasSubstr;

std::string content(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What another user may have put where a file is to come, and what is said of it.
struct Planted {
    friend void PrintTo(const Planted& planted, std::ostream* out) { *out << planted.name; }

    const char* name;
    void (*plant)(const std::string& path, const std::string& elsewhere);
    const char* said;
};

const Planted planted[]{
    {"link",
     [](const std::string& path, const std::string& to) { EXPECT_EQ(symlink(to.c_str(), path.c_str()), 0); },
     "symbolic link"},
    {"linkToNowhere",
     [](const std::string& path, const std::string& to) {
         EXPECT_EQ(symlink((to + "x").c_str(), path.c_str()), 0);
     },
     "symbolic link"},
    {"pipe", [](const std::string& path, const std::string&) { EXPECT_EQ(mkfifo(path.c_str(), 0600), 0); },
     "is no file"},
    {"writable",
     [](const std::string& path, const std::string&) {
         std::ofstream(path) << "planted";
         EXPECT_EQ(chmod(path.c_str(), 0666), 0);
     },
     "others can write to"},
    {"foreign",
     [](const std::string& path, const std::string&) {
         std::ofstream(path) << "planted";
         EXPECT_EQ(chown(path.c_str(), 65534, 65534), 0);
     },
     "another user's"},
    {"folder",
     [](const std::string& path, const std::string&) {
         EXPECT_EQ(chmod(path.substr(0, path.rfind('/')).c_str(), 0777), 0);
     },
     "others can write to the folder"},
};

class OwnFiles : public ::testing::TestWithParam<Planted> {
  protected:
    void SetUp() override {
        if (GetParam().name == std::string_view("foreign") && geteuid() != 0)
            GTEST_SKIP() << "only root can give a file away";
        mkdir(place.c_str(), 0700);
    }
    void plant(const std::string& name) { GetParam().plant(place + "/" + name, victim); }
    void expectRefused(CardServiceOptions options) {
        CardService service(std::move(options));
        EXPECT_THAT(service.start(), HasSubstr(GetParam().said));
    }

    const testing::TemporaryFolder folder;
    const std::string place = folder / "place", victim = folder.file("victim", "as it was");
};
INSTANTIATE_TEST_SUITE_P(Planted, OwnFiles, ::testing::ValuesIn(planted),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_P(OwnFiles, AreNeitherReadNorWrittenWhereSomebodyElseHasAHandInThem) {
    plant("file");
    EXPECT_THAT(writeOwnFile(place + "/file", "text"), HasSubstr(GetParam().said));
    EXPECT_THAT(claimOwnFile(place + "/file"), HasSubstr(GetParam().said));
    EXPECT_THAT(readOwnFile(place + "/file").reason(), HasSubstr(GetParam().said));
    EXPECT_EQ(content(victim), "as it was");
    EXPECT_FALSE(std::filesystem::exists(victim + "x"));
}

TEST_P(OwnFiles, OfTheServiceAreTheCaItsKeyTheDatabaseAndItsJournal) {
    for (const char* const name : {"ca.pem", "ca-key.pem"}) {
        plant(name);
        expectRefused({.tlsDirectory = place});
        std::filesystem::remove(place + "/" + name);
    }
    for (const char* const name : {"state.db", "state.db-journal", "state.db-wal"}) {
        plant(name);
        expectRefused({.databaseFile = place + "/state.db"});
        std::filesystem::remove(place + "/" + name);
    }
    EXPECT_EQ(content(victim), "as it was");
}

TEST(OwnFile, IsReplacedWholeAndReadableByItsUserAlone) {
    const testing::TemporaryFolder folder;
    const std::string path = folder / "file";
    for (const char* const text : {"first", "second, longer"}) {
        EXPECT_EQ(writeOwnFile(path, text), "");
        EXPECT_EQ(*readOwnFile(path), text);
    }
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    chmod((folder / "").c_str(), 01777);  // as /tmp is
    EXPECT_EQ(writeOwnFile(path, "third"), "");
    const std::filesystem::directory_iterator files(folder / "");
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "nothing is left beside it";
    EXPECT_THAT(writeOwnFile(folder / "none/file", ""), HasSubstr("No such file"));
}

}  // namespace
}  // namespace korvane::sandbox
