#pragma once
// Runs the koqdde tool as a user does, on a temporary copy of the bundled data pack, with its
// own configuration file, and gives back the exit status and both outputs.
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <sys/wait.h>
#include <vector>

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

inline std::string Quote(const std::string& arg) {
    std::string q = "'";
    for (char c : arg)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

// A command the tool refuses: its exit status and what it says on either output.
struct Refused {
    std::vector<std::string> args;
    int status;
    std::string says;
};

// A small category of the bundled pack, as the tool takes it.
inline const std::string kPipeArg = "给排水\\管道\\给水管";

class Cli : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(std::string(KOQDDE_SOURCE_DIR) + "/data/sample", Path("pack"),
                              std::filesystem::copy_options::recursive);
    }

    std::string Path(const std::string& name) const { return ToUtf8(dir.File(FromUtf8(name))); }
    std::string Config() const { return Path("cfg.xml"); }
    std::string Folder() const { return Path("pack/profile/自动套配置/"); }
    std::string Bytes(const std::string& file) const { return dir.Read(FromUtf8(file)); }

    // Runs the tool with the pack and the configuration file of this test.
    Result Run(const std::vector<std::string>& args, bool withFile = true) const {
        std::string command = environment + " XDG_DATA_HOME=" + Quote(Path("xdg")) + " " +
                              Quote(KOQDDE_CLI_PATH) + " --data " + Quote(Path("pack"));
        if (withFile)
            command += " --file " + Quote(Config());
        for (const auto& a : args)
            command += " " + Quote(a);
        command += " >" + Quote(Path("out.txt")) + " 2>" + Quote(Path("err.txt")) + " </dev/null";
        int raw = std::system(command.c_str());
        Result r;
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        r.out = Bytes(Path("out.txt"));
        r.err = Bytes(Path("err.txt"));
        return r;
    }

    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    // Runs each command of the tool; the test stops at the first that fails.
    void Setup(const std::vector<std::vector<std::string>>& commands) const {
        for (const auto& args : commands) {
            Result r = Run(args);
            ASSERT_EQ(r.status, 0) << args[0] << " " << args[1] << ": " << r.err;
        }
    }

    // A checksum of every file of the test but the tool's outputs and the edits' lock files.
    std::map<std::string, size_t> Files() const {
        std::map<std::string, size_t> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Path(""))) {
            const std::string name = entry.path().filename().string();
            if (!entry.is_regular_file() || name == "out.txt" || name == "err.txt" ||
                (name.starts_with(".") && name.ends_with(".lock")))
                continue;
            files[entry.path().string()] = std::hash<std::string>()(Bytes(entry.path().string()));
        }
        return files;
    }

    // Runs each command, which is to end with its status, say its text and change no file.
    void ExpectRefused(const std::vector<Refused>& lines) const {
        for (const Refused& line : lines) {
            const auto before = Files();
            std::string shown;
            for (const std::string& arg : line.args)
                shown += arg + " ";
            Result r = Run(line.args);
            EXPECT_EQ(r.status, line.status) << shown << "\n" << r.err;
            EXPECT_TRUE(Has(r.out + r.err, line.says)) << shown << "\n" << r.out << r.err;
            EXPECT_EQ(Files(), before) << shown;
        }
    }

    TempDir dir;
    std::string environment; // NAME=VALUE words put before the command
};
