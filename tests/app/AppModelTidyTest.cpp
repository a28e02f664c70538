// Filing, trashing and undoing through the application model, on real files in a temporary
// tree: the library follows the files, every run is journaled, and the banner says what happened.
#include "AppTestSupport.h"
#include "app/AppModel.h"
#include "app/TidyChoices.h"
#include "support/TempDir.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace lumivale {
namespace {

const std::string trashDetail =
    "You can put them back with Undo, or from the Trash in your file manager, until you empty it.";

struct Question {
    std::string message, detail, button;
    bool operator==(const Question&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Question& q) {
    return out << "{" << q.message << " | " << q.detail << " | " << q.button << "}";
}

// One screenshot of the test: its file name, its shelf and its words.
struct Picture {
    std::string name;
    Shelf shelf;
    std::vector<std::string> words;
};

const Picture receipt{"receipt.png", Shelf::bills, {"TAX INVOICE", "Grand Total 1,008.00"}};
const Picture chat{"chat.png", Shelf::chats, {"Ravi", "see you at 7"}};
const Picture map{"map.png", Shelf::maps, {"Lalbagh Botanical Garden", "12 min"}};

// A model over a temporary tree whose confirmation, Trash, clock, timers and reader the test
// holds. Folder watching is off unless a test turns it on.
class TidyWorld {
public:
    TidyWorld() {
        test::ensureQtApp();
        fs::create_directories(shots());
        settings.setValue("watchFolders", false);
    }

    std::string shots() const { return tmp.file("Screenshots"); }
    std::string shot(const std::string& name) const { return shots() + "/" + name; }
    std::string archive() const { return tmp.file("Archive"); }

    // A model, not yet loaded.
    AppModel& make() {
        AppModel::Services services;
        services.clock = [this] { return clock; };
        services.scheduler = scheduler;
        services.confirm = [this](const std::string& m, const std::string& d,
                                  const std::string& b) {
            questions.push_back({m, d, b});
            return agree;
        };
        services.trasher = trash.trasher();
        services.read = [this](const std::string&, const std::vector<std::string>&) {
            ++reads;
            return Reading{};
        };
        model = std::make_unique<AppModel>(Paths::at(tmp.file("data"), shots(), archive()),
                                           settings, services);
        return *model;
    }

    // A loaded model whose library holds read records of these pictures, drawn into the
    // screenshot folder.
    AppModel& open(const std::vector<Picture>& pictures) {
        Library library;
        for (const Picture& p : pictures) {
            test::drawPicture(shot(p.name), p.words, 400);
            library.put(test::readShotOf(shot(p.name), p.shelf, p.words, clock - 24h));
        }
        EXPECT_TRUE(library.save(tmp.file("data/library.plist")));
        make().load();
        return *model;
    }

    // Runs the event loop until the model's scan and reads are done.
    void settle() { model->waitUntilIdle(); }

    test::TempDir tmp;
    QSettings settings{QString::fromStdString(tmp.file("settings.ini")), QSettings::IniFormat};
    std::shared_ptr<test::FakeScheduler> scheduler = std::make_shared<test::FakeScheduler>();
    Date clock = now();
    std::vector<Question> questions;
    bool agree = true;
    std::atomic<int> reads{0};
    test::FolderTrash trash{tmp.file("Trash")};
    std::unique_ptr<AppModel> model;
};

// The banner stays exactly this long.
void expectBannerLasts(TidyWorld& world, std::chrono::milliseconds life) {
    ASSERT_TRUE(world.model->banner());
    const QUuid id = world.model->banner()->id;
    world.scheduler->advance(life - 1ms);
    ASSERT_TRUE(world.model->banner());
    EXPECT_EQ(world.model->banner()->id, id);
    world.scheduler->advance(1ms);
    EXPECT_FALSE(world.model->banner());
}

TEST(AppModelTidy, filedScreenshotsKeepTheirReadingsUnderTheirNewPaths) {
    TidyWorld world;
    world.settings.setValue("watchFolders", true);
    AppModel& model = world.open({receipt, chat});
    std::map<std::string, Shot> before;
    for (const auto& [path, shot] : model.library().shots)
        before[path] = *shot;
    const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
    ASSERT_EQ(plan.moves.size(), 2u);

    const std::optional<TidyResult> result = model.tidy(plan);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->failed.empty());
    ASSERT_EQ(result->journal.entries, plan.moves);
    EXPECT_EQ(model.library().shots.size(), 2u);
    for (const Move& move : plan.moves) {
        SCOPED_TRACE(move.to);
        EXPECT_FALSE(fs::exists(move.from));
        EXPECT_TRUE(fs::exists(move.to));
        EXPECT_EQ(model.library().find(move.from), nullptr);
        const Shot* filed = model.library().find(move.to);
        ASSERT_NE(filed, nullptr);
        const Shot& old = before.at(move.from);
        EXPECT_EQ(filed->lines, old.lines);
        EXPECT_EQ(filed->guess, old.guess);
        EXPECT_EQ(filed->readAt, old.readAt);
        EXPECT_EQ(filed->modified, old.modified);
    }
    ASSERT_EQ(model.journals().entries.size(), 1u);
    EXPECT_EQ(model.journals().entries.front(), result->journal);
    EXPECT_EQ(result->journal.kind, Journal::Kind::moved);
    EXPECT_TRUE(model.canUndo());
    ASSERT_TRUE(model.banner());
    EXPECT_EQ(model.banner()->text, "Moved 2 screenshots");
    EXPECT_FALSE(model.banner()->isError);
    EXPECT_EQ(model.banner()->undo, result->journal);
    EXPECT_TRUE(model.watchedFolders().contains(QString::fromStdString(world.archive())))
        << "the archive, which exists now, is watched";

    // The scan that follows finds them in the archive and reads nothing again.
    model.rescan();
    world.settle();
    EXPECT_EQ(world.reads, 0);
    for (const Move& move : plan.moves) {
        ASSERT_NE(model.library().find(move.to), nullptr) << move.to;
        EXPECT_TRUE(model.library().find(move.to)->isRead());
    }

    // Both files were saved.
    model.waitForSaves();
    const JournalBook book = JournalBook::load(model.paths().journalFile());
    ASSERT_EQ(book.entries.size(), 1u);
    EXPECT_EQ(book.entries.front().id, result->journal.id);
    const auto library = Library::load(model.paths().libraryFile());
    ASSERT_TRUE(library);
    for (const Move& move : plan.moves)
        EXPECT_TRUE(library->find(move.to)) << move.to;
}

TEST(AppModelTidy, theArchiveBecomesAReadFolderWhenItWasNotOne) {
    TidyWorld world;
    test::drawPicture(world.shot(receipt.name), receipt.words, 400);
    const ShotPtr shot = std::make_shared<const Shot>(
        test::readShotOf(world.shot(receipt.name), receipt.shelf, receipt.words, world.clock));
    AppModel& model = world.make(); // its folders are not built yet
    ASSERT_TRUE(model.sources().empty());
    const TidyPlan plan =
        Tidy::plan(std::vector<ShotPtr>{shot}, world.archive(), TidyLayout::byCategory, false,
                   [](const std::string& path) { return fs::exists(path); });

    ASSERT_TRUE(model.tidy(plan));
    const auto archive = std::find_if(model.sources().begin(), model.sources().end(),
                                      [&](const Source& s) { return s.path == world.archive(); });
    ASSERT_NE(archive, model.sources().end());
    EXPECT_EQ(archive->kind, Source::Kind::archive);
    EXPECT_TRUE(archive->enabled);
}

TEST(AppModelTidy, filesThatWentMissingAreCountedAndOnlyWhatMovedCanBeUndone) {
    struct Case {
        std::vector<std::string> deleted;
        std::string banner;
        bool isError;
        std::chrono::milliseconds lasts;
    };
    const Case cases[] = {
        {{}, "Moved 2 screenshots", false, 12s},
        {{"receipt.png"}, "Moved 1; 1 screenshot couldn't be moved: No longer there", true, 12s},
        {{"receipt.png", "chat.png"},
         "Moved 0; 2 screenshots couldn't be moved: No longer there",
         true,
         4s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.banner);
        TidyWorld world;
        AppModel& model = world.open({receipt, chat});
        const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
        for (const std::string& name : c.deleted)
            fs::remove(world.shot(name));

        const std::optional<TidyResult> result = model.tidy(plan);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->failed.size(), c.deleted.size());
        const size_t moved = 2 - c.deleted.size();
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner);
        EXPECT_EQ(model.banner()->isError, c.isError);
        EXPECT_EQ(model.banner()->undo.has_value(), moved > 0);
        EXPECT_EQ(model.journals().entries.size(), moved > 0 ? 1u : 0u);
        EXPECT_EQ(model.canUndo(), moved > 0);
        expectBannerLasts(world, c.lasts);
    }
}

TEST(AppModelTidy, anEmptyPlanOrListDoesNothing) {
    TidyWorld world;
    AppModel& model = world.open({receipt});
    EXPECT_FALSE(model.tidy(TidyPlan{}));
    EXPECT_FALSE(model.trash({}));
    EXPECT_FALSE(model.banner());
    EXPECT_TRUE(world.questions.empty());
    EXPECT_TRUE(model.journals().entries.empty());
}

TEST(AppModelTidy, trashingAsksFirstAndRecordsWhereEachFileWent) {
    struct Case {
        const char* name;
        bool agree;
        std::vector<std::string> trashing;
        std::vector<std::string> refused;
        std::string question;
        std::optional<std::string> banner;
    };
    const Case cases[] = {
        {"declined", false, {"receipt.png"}, {}, "Put 1 screenshot in the Trash?", std::nullopt},
        {"one",
         true,
         {"receipt.png"},
         {},
         "Put 1 screenshot in the Trash?",
         "Put in the Trash: 1 screenshot"},
        {"two",
         true,
         {"receipt.png", "chat.png"},
         {},
         "Put 2 screenshots in the Trash?",
         "Put in the Trash: 2 screenshots"},
        {"one refused",
         true,
         {"receipt.png", "chat.png"},
         {"chat.png"},
         "Put 2 screenshots in the Trash?",
         "Put in the Trash: 1; 1 screenshot couldn't be moved: The Trash is not available"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TidyWorld world;
        world.agree = c.agree;
        AppModel& model = world.open({receipt, chat, map});
        std::vector<std::string> paths;
        for (const std::string& name : c.trashing)
            paths.push_back(world.shot(name));
        for (const std::string& name : c.refused)
            world.trash.refused.insert(world.shot(name));

        const std::optional<TidyResult> result = model.trash(paths);
        EXPECT_EQ(world.questions,
                  (std::vector<Question>{{c.question, trashDetail, "Move to Trash"}}));
        ASSERT_EQ(result.has_value(), c.agree);
        ASSERT_EQ(model.banner().has_value(), c.banner.has_value());
        std::vector<Move> gone;
        for (const std::string& path : paths) {
            const std::string name = fs::path(path).filename();
            const bool went =
                c.agree && std::find(c.refused.begin(), c.refused.end(), name) == c.refused.end();
            EXPECT_EQ(fs::exists(path), !went) << name;
            EXPECT_EQ(model.library().find(path) == nullptr, went) << name;
            if (went) gone.push_back({path, world.trash.folder() + "/" + name});
        }
        EXPECT_EQ(world.trash.names().size(), gone.size());
        EXPECT_NE(model.library().find(world.shot(map.name)), nullptr);
        if (!c.agree) {
            EXPECT_TRUE(model.journals().entries.empty());
            continue;
        }
        EXPECT_EQ(result->journal.kind, Journal::Kind::trashed);
        EXPECT_EQ(result->journal.entries, gone);
        EXPECT_EQ(model.journals().entries, std::vector<Journal>{result->journal});
        EXPECT_EQ(model.banner()->text, *c.banner);
        EXPECT_EQ(model.banner()->isError, !c.refused.empty());
        EXPECT_EQ(model.banner()->undo, result->journal);
    }
}

TEST(AppModelTidy, trashingTheSelectedScreenshotClearsTheSelection) {
    struct Case {
        std::string selected;
        std::optional<std::string> after;
    };
    const Case cases[] = {{"receipt.png", std::nullopt}, {"chat.png", "chat.png"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.selected);
        TidyWorld world;
        AppModel& model = world.open({receipt, chat});
        model.setSelection(world.shot(c.selected));
        ASSERT_TRUE(model.trash({world.shot(receipt.name)}));
        std::optional<std::string> expected;
        if (c.after) expected = world.shot(*c.after);
        EXPECT_EQ(model.selection(), expected);
    }
}

TEST(AppModelTidy, undoPutsBackTheNewestRunFirstAndOnlyOnce) {
    TidyWorld world;
    AppModel& model = world.open({receipt, chat, map});
    const std::optional<TidyResult> trashed = model.trash({world.shot(map.name)});
    ASSERT_TRUE(trashed);
    const TidyPlan plan = fileIntoFolders(model, TidyChoices{});
    ASSERT_EQ(plan.moves.size(), 2u);
    const std::optional<TidyResult> filed = model.tidy(plan);
    ASSERT_TRUE(filed);
    ASSERT_EQ(model.journals().lastUndoable()->id, filed->journal.id);

    model.undoLast();
    ASSERT_TRUE(model.banner());
    EXPECT_EQ(model.banner()->text, "Put 2 screenshots back");
    EXPECT_FALSE(model.banner()->isError);
    EXPECT_FALSE(model.banner()->undo);
    for (const Move& move : plan.moves) {
        EXPECT_TRUE(fs::exists(move.from)) << move.from;
        EXPECT_FALSE(fs::exists(move.to)) << move.to;
        ASSERT_NE(model.library().find(move.from), nullptr) << "the record followed its file back";
        EXPECT_TRUE(model.library().find(move.from)->isRead());
        EXPECT_EQ(model.library().find(move.to), nullptr);
    }
    ASSERT_TRUE(model.canUndo());
    EXPECT_EQ(model.journals().lastUndoable()->id, trashed->journal.id);
    world.settle();
    expectBannerLasts(world, 4s);

    model.undoLast();
    EXPECT_EQ(model.banner()->text, "Put 1 screenshot back");
    EXPECT_TRUE(fs::exists(world.shot(map.name)));
    EXPECT_TRUE(world.trash.names().empty());
    EXPECT_FALSE(model.canUndo());
    world.settle();
    EXPECT_NE(model.library().find(world.shot(map.name)), nullptr) << "the scan finds it again";
    EXPECT_EQ(world.reads, 1) << "only the screenshot back from the Trash is read again";

    // Nothing is left to undo, and the book on disk says so too.
    const QUuid last = model.banner()->id;
    model.undoLast();
    EXPECT_EQ(model.banner()->id, last);
    model.waitForSaves();
    const JournalBook book = JournalBook::load(model.paths().journalFile());
    ASSERT_EQ(book.entries.size(), 2u);
    EXPECT_TRUE(book.entries[0].undone && book.entries[1].undone);
}

TEST(AppModelTidy, undoOfFilesMovedOnElsewhereSaysHowManyCouldNotComeBack) {
    struct Case {
        std::vector<std::string> movedOn;
        std::string banner;
        bool isError;
    };
    const Case cases[] = {
        {{}, "Put 2 screenshots back", false},
        {{"chat.png"}, "Put 1 back; 1 couldn't come back", true},
        {{"receipt.png", "chat.png"}, "Put 0 back; 2 couldn't come back", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.banner);
        TidyWorld world;
        AppModel& model = world.open({receipt, chat});
        const std::optional<TidyResult> filed = model.tidy(fileIntoFolders(model, TidyChoices{}));
        ASSERT_TRUE(filed);
        std::set<std::string> movedFrom;
        for (const Move& move : filed->journal.entries) {
            const std::string name = fs::path(move.from).filename();
            if (std::find(c.movedOn.begin(), c.movedOn.end(), name) == c.movedOn.end()) continue;
            fs::create_directories(world.tmp.file("Elsewhere"));
            fs::rename(move.to, world.tmp.file("Elsewhere/" + name));
            movedFrom.insert(move.from);
        }

        model.undo(filed->journal);
        ASSERT_TRUE(model.banner());
        EXPECT_EQ(model.banner()->text, c.banner);
        EXPECT_EQ(model.banner()->isError, c.isError);
        EXPECT_FALSE(model.banner()->undo);
        EXPECT_FALSE(model.canUndo()) << "an undone journal is not offered again";
        for (const Move& move : filed->journal.entries)
            EXPECT_EQ(fs::exists(move.from), !movedFrom.count(move.from)) << move.from;
        world.settle();
        expectBannerLasts(world, 4s);
    }
}

} // namespace
} // namespace lumivale
