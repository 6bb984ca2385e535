// Every file of a small sample, damaged in every place: reading the database comes to an end, and what it
// finds obeys the rules.
#include <functional>

#include "databasetest.h"
#include "invariants.h"
#include "sample.h"

namespace {

// Each file stands alone in the tree that is read, and there is no log, since there are many thousands of
// readings.
class HostileFiles : public DatabaseTest {
protected:
    void
    forEachFile(const std::function<void(const std::string& name, const std::string& content)>& operation) {
        const TempDir sample;
        SampleOptions options;
        options.directory = sample.path();
        options.files = options.types = options.experiments = options.fields = 1;
        options.entries = options.records = 2;
        ASSERT_EQ(makeSample(options).failure, "");
        logEnabled = 0;
        for (const std::string& name : listTree(sample.path())) {
            SCOPED_TRACE(name);
            if (name.back() == '/') {
                std::filesystem::create_directories(root / name);
                continue;
            }
            operation(name, readFile(sample / name));
            std::filesystem::remove(root / name);
        }
    }

    void expectRules(const std::string& name, const std::string& content, std::size_t place) {
        put(name, content);
        const char* broken = brokenRule(load());
        EXPECT_EQ(broken, nullptr) << "broken: " << broken << ", at byte " << place;
    }
};

TEST_F(HostileFiles, cut_at_every_length_are_read) {
    forEachFile([this](const std::string& name, const std::string& content) {
        for (std::size_t length = 0; length < content.size(); ++length)
            expectRules(name, content.substr(0, length), length);
    });
}

TEST_F(HostileFiles, with_any_of_their_first_bytes_changed_are_read) {
    forEachFile([this](const std::string& name, const std::string& content) {
        for (std::size_t place = 0; place < std::min<std::size_t>(content.size(), 300); ++place)
            for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
                std::string changed = content;
                changed[place] = static_cast<char>(value);
                expectRules(name, changed, place);
            }
    });
}

} // namespace
