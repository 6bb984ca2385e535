// Every file of a small sample, damaged in every place: reading the database comes to an end, and what it
// finds obeys the rules.
#include <gtest/gtest.h>

#include <functional>

#include "invariants.h"
#include "sample.h"
#include "tempdir.h"

namespace {

class HostileFiles : public testing::Test {
protected:
    void SetUp() override {
        SampleOptions options;
        options.directory = sample_.path();
        options.files = options.types = options.experiments = options.fields = 1;
        options.entries = options.records = 2;
        ASSERT_EQ(makeSample(options).failure, "");
    }

    // Each file stands alone in the tree that is read, since there are many thousands of readings.
    void
    forEachFile(const std::function<void(const std::string& path, const std::string& content)>& operation) {
        for (const std::string& name : listTree(sample_.path())) {
            if (name.back() == '/') {
                std::filesystem::create_directory(tree_ / name);
                continue;
            }
            SCOPED_TRACE(name);
            operation(tree_ / name, readFile(sample_ / name));
            std::filesystem::remove(tree_ / name);
        }
    }

    void expectRules(const std::string& path, const std::string& content, std::size_t place) {
        writeFile(path, content);
        TSXdatabase database("");
        database.load(tree_.path().c_str());
        const char* broken = brokenRule(database);
        EXPECT_EQ(broken, nullptr) << "broken: " << broken << ", at byte " << place;
    }

    TempDir sample_, tree_;
};

TEST_F(HostileFiles, cut_at_every_length_are_read) {
    forEachFile([this](const std::string& path, const std::string& content) {
        for (std::size_t length = 0; length < content.size(); ++length)
            expectRules(path, content.substr(0, length), length);
    });
}

TEST_F(HostileFiles, with_any_of_their_first_bytes_changed_are_read) {
    forEachFile([this](const std::string& path, const std::string& content) {
        for (std::size_t place = 0; place < std::min<std::size_t>(content.size(), 300); ++place)
            for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
                std::string changed = content;
                changed[place] = static_cast<char>(value);
                expectRules(path, changed, place);
            }
    });
}

} // namespace
