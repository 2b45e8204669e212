#include "farm/Job.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "farm/Quoting.h"
#include "shot/Files.h"

namespace {

using veloxa::Job;

class Jobs : public test::Files {
  protected:
    Jobs() {
        std::filesystem::create_directories(job_.folder);
        write("program", "#!/bin/bash\nprintf '%s\\0' \"$PWD\" \"$@\" >\"${0%/*}\"/told\n");
        std::filesystem::permissions(file("program"), std::filesystem::perms::owner_all);
    }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(file(name), std::ios::binary) << text;
    }
    // What the program's stand-in was told: its folder, then its arguments.
    std::vector<std::string> told_by(const std::string& command) const {
        std::filesystem::remove(file("told"));
        EXPECT_EQ(std::system(("cd '" + folder_.string() + "' && " + command).c_str()), 0);
        std::ifstream stream(file("told"), std::ios::binary);
        std::vector<std::string> words;
        for (std::string word; std::getline(stream, word, '\0');) words.push_back(word);
        return words;
    }

    const std::vector<std::string> words_{"--fg",
                                          "with blank",
                                          "--set",
                                          "",
                                          "-",
                                          "--name=-led",
                                          "$HOME `id` $(id)",
                                          "it's",
                                          "\"double\"",
                                          "back\\sl",
                                          "a\nb\tc\r",
                                          "\x01\x7f",
                                          "byte \xff\xfe"
                                          "3",
                                          "\xc3\xa9 \xe2\x82\xac",
                                          "#hash",
                                          "~",
                                          "*?[a]",
                                          "{a,b}",
                                          "!!",
                                          "{{Param.Folder}}",
                                          "{{{\xff{",
                                          "$(1) $@ %",
                                          "\xed\xa0\x80 \xc0\xaf \xc3",
                                          ";&|<>()"};
    Job job_{"job", file("in $folder's #{{\xc3\xa9}}"), file("program"), words_, 3, 7, 2};
    const std::vector<std::string> expected_ = [this] {
        std::vector<std::string> all{job_.folder, "key"};
        all.insert(all.end(), words_.begin(), words_.end());
        all.insert(all.end(), {"--resume", "--chunk", "1/3"});
        return all;
    }();
};

TEST_F(Jobs, OfSlurmRunWithTheWordsThatWereGiven) {
    write("job.sh", slurm_script(job_));
    EXPECT_EQ(told_by("SLURM_ARRAY_TASK_ID=1 bash job.sh"), expected_);
}

TEST_F(Jobs, OfMakeRunWithTheWordsThatWereGiven) {
    write("job.mk", makefile(job_));
    EXPECT_EQ(told_by("make -s -f job.mk chunk-1"), expected_);
}

TEST_F(Jobs, OfOpenJobDescriptionRunWithTheWordsThatWereGiven) {
    const auto all = nlohmann::json::parse(openjd_template(job_));
    const auto& step = all.at("steps").at(0);
    EXPECT_EQ(step.at("parameterSpace").at("taskParameterDefinitions").at(0).at("range"), "0-2");
    const auto& run = step.at("script").at("actions").at("onRun");
    // Expressions as the standard has them, in the order in which they stand; values are not looked through
    // again.
    const auto resolved = [&](const std::string& text) {
        std::string out;
        std::size_t at = 0;
        for (std::size_t open; (open = text.find("{{", at)) != std::string::npos;) {
            const std::size_t close = text.find("}}", open);
            const std::string name = text.substr(open + 2, close - open - 2);
            EXPECT_TRUE(name == "Task.Param.Chunk" || name == "Param.Folder") << name;
            out += text.substr(at, open - at);
            out +=
                name == "Param.Folder" ? all["parameterDefinitions"][0]["default"].get<std::string>() : "1";
            at = close + 2;
        }
        return out + text.substr(at);
    };
    std::string command = run.at("command");
    for (const auto& arg : run.at("args"))
        command += " " + veloxa::shell_word(resolved(arg.get<std::string>()));
    write("run.sh", command);
    std::vector<std::string> telling = expected_;
    telling.insert(telling.end(), {"--progress", "openjd"});
    EXPECT_EQ(told_by("bash run.sh"), telling);

    job_.folder += '\xff';
    EXPECT_NE(test::told_by([&] { openjd_template(job_); }).find("UTF-8"), std::string::npos);
}

}  // namespace
