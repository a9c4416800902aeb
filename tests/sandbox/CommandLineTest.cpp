// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "sandbox/Json.h"
#include "tests/sandbox/TestClient.h"

namespace korvane::sandbox {
namespace {

using testing::HasSubstr;

/// The running program; its output comes through a pipe, its log goes to a file.
class Program {
  public:
    explicit Program(std::vector<std::string> arguments)
        : logFile_(testing::TempDir() + "log" + std::to_string(::getpid())) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("pipe");
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(ends[1], STDOUT_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            if (!std::freopen(logFile_.c_str(), "w", stderr)) ::_exit(126);
            arguments.insert(arguments.begin(), SANDBOX_PROGRAM);
            std::vector<char*> pointers;
            for (std::string& argument : arguments) pointers.push_back(argument.data());
            pointers.push_back(nullptr);
            ::execv(SANDBOX_PROGRAM, pointers.data());
            ::_exit(127);
        }
        ::close(ends[1]);
        output_ = ::fdopen(ends[0], "r");
    }
    ~Program() {
        std::fclose(output_);
        if (process_ > 0) end(SIGKILL);
        std::filesystem::remove(logFile_);
    }

    std::string line() {
        char text[4096];
        return std::fgets(text, sizeof text, output_) ? text : "";
    }
    /// The exit status; the signal's number with a minus when it died of one.
    int end(int signal) {
        if (signal) ::kill(process_, signal);
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    std::string log() const {
        std::ifstream file(logFile_);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::string logFile_;
    pid_t process_ = 0;
    FILE* output_ = nullptr;
};

TEST(CommandLineTest, ServesUntilItIsTold) {
    for (const int signal : {SIGTERM, SIGINT}) {
        const std::string caFile = testing::TempDir() + "ca" + std::to_string(::getpid()) + ".pem";
        Program program({"--ca-out", caFile, "--key", "AAAAAAAAAAAAAAAAAAAAAA==", "--verbose"});
        const auto ready = readJsonObject(program.line());
        ASSERT_TRUE(ready) << program.log();
        Texts texts;
        for (const auto& [name, value] : *ready) texts[name] = std::get<std::string>(value);
        EXPECT_EQ(texts.at("ca"), caFile);
        EXPECT_EQ(texts.at("key"), "AAAAAAAAAAAAAAAAAAAAAA==");
        EXPECT_EQ(texts.at("ivUrl"), texts.at("url") + "/host/iv");
        std::ifstream file(caFile);
        TestClient client(texts.at("url"), {std::istreambuf_iterator<char>(file), {}}, texts.at("key"));
        EXPECT_NE(client.pciToken("card-physical-active"), "");
        EXPECT_THAT(program.log(),
                    HasSubstr("SMS for card-physical-active: " + client.lastCode("card-physical-active")));
        EXPECT_EQ(program.end(signal), 0) << program.log();
        std::filesystem::remove(caFile);
    }
}

TEST(CommandLineTest, RefusesWhatItDoesNotUnderstand) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"--colour"}, "unknown option --colour"},
        {{"--port"}, "--port needs a value"},
        {{"--port", "65536"}, "--port takes a whole number from 0 to 65535"},
        {{"--port", "12x"}, "--port takes"},
        {{"--iv-seconds", "0"}, "--iv-seconds takes"},
        {{"--seed", "-1"}, "--seed takes"},
        {{"--db", ""}, "--db takes a value"},
        {{"--http", "--ca-out", "ca.pem"}, "--http has no certificate"},
    };
    for (const auto& [arguments, message] : cases) {
        Program program(arguments);
        EXPECT_EQ(program.line(), "");
        EXPECT_EQ(program.end(0), 2);
        EXPECT_THAT(program.log(), HasSubstr(message));
    }
    Program help({"--help"});
    EXPECT_THAT(help.line(), HasSubstr("Usage: korvane-sandbox"));
    while (!help.line().empty()) {
    }
    EXPECT_EQ(help.end(0), 0);
    Program useless({"--key", "AAAA"});
    EXPECT_EQ(useless.end(0), 1);
    EXPECT_THAT(useless.log(), HasSubstr("not 16, 24 or 32"));
}

}  // namespace
}  // namespace korvane::sandbox
