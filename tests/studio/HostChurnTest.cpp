// Ten thousand random user operations on Zelkin Studio from a fixed seed, the invariants checked after each one.
// Under the sanitizers, where each step costs five times as much, the first quarter of the same run.
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>

#include <QDataStream>
#include <QDir>
#include <QSet>
#include <QTemporaryDir>

#include <zelkin/BoneCatalogue.h>
#include <zelkin/MappingTemplate.h>
#include <zelkin/NameMatcher.h>
#include <zelkin/TemplateLibrary.h>

#include "ChurnChecks.h"
#include "InProcessReading.h"
#include "ModalAnswerer.h"
#include "StudioFixture.h"

namespace
{
constexpr unsigned kSeed = 0x5EEDC0DEu;
#ifdef ZELKIN_UNDER_ASAN
constexpr int kSteps = 2500;
#else
constexpr int kSteps = 10000;
#endif

// The least count of something that ten thousand steps must show, for this run's length.
constexpr int AtLeast(int inTenThousand)
{
    return inTenThousand * kSteps / 10000;
}
// A round trip (two project writes, one read through a second studio with its views, two file parses) costs about
// eight operations: after every step the test would take minutes, so it runs on every fifth step, and the
// save-and-reload operation checks its own.
constexpr int kRoundTripEvery = 5;
constexpr int kMaxCharacterizations = 6;
// Below this many bones the skeleton is opened afresh, so templates keep finding something to map.
constexpr int kMinBones = 44;

enum Op
{
    Assign,
    Clear,
    ApplyTemplate,
    Mirror,
    RenameBone,
    DeleteBone,
    CreateCharacterization,
    DeleteCharacterization,
    RenameCharacterization,
    Lock,
    Unlock,
    Undo,
    Redo,
    SaveAndReload,
    SwitchCharacterization,
    OpenSkeleton,
    OpCount
};

struct OpKind
{
    const char* name;
    int weight;
    // Steps of this kind, in ten thousand, that must have changed something (or, for saving, succeeded).
    int minimumDone;
    // Steps of this kind, in ten thousand, that must have been tried on a locked characterization.
    int minimumWhileLocked;
};

const std::array<OpKind, OpCount> kKinds = {{
    {"assign", 20, 600, 120},
    {"clear", 9, 350, 60},
    {"apply template", 5, 100, 30},
    {"mirror", 5, 300, 30},
    {"rename bone", 6, 350, 40},
    {"delete bone", 4, 250, 25},
    {"create characterization", 3, 150, 0},
    {"delete characterization", 2, 130, 0},
    {"rename characterization", 3, 150, 0},
    {"lock", 8, 100, 0},
    {"unlock", 6, 50, 0},
    {"undo", 10, 500, 50},
    {"redo", 6, 60, 40},
    {"save and reload", 1, 60, 0},
    {"switch characterization", 5, 150, 0},
    {"open skeleton", 0, 10, 0},
}};

struct Tally
{
    int tried = 0;
    int done = 0;
    int whileLocked = 0;
};

QString BaseName(const QString& bone)
{
    return bone.section(QLatin1Char(':'), -1);
}

int NodeOf(const QString& bone)
{
    return BoneCatalogue::NodeId(BaseName(bone).toLatin1().constData());
}

class HostChurnTest : public StudioFixture
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        // Two thousand reloads: a reader process for each would be most of the run, and isolation is not the subject.
        ReadSkeletonsInProcess();
        ASSERT_TRUE(work.isValid() && readerConfiguration.isValid());
        window->SetBatchMode(true);
        ASSERT_TRUE(window->OpenSkeleton(Sample()));
        reader = std::make_unique<MainWindow>(readerConfiguration.path());
        reader->SetBatchMode(true);
        const TemplateLibrary library = Model().GetTemplateLibrary();
        for (const QString& name : library.Names())
            ASSERT_TRUE(library.Load(name, templates[name])) << name.toStdString();
        ASSERT_GE(templates.size(), 2u);
        QObject::connect(&Hub(), &IDCCHub::NameChanged, window.get(),
                         [this](const QString& newName, const QString& oldName) {
                             edits.renames.append({oldName, newName});
                         });
        QObject::connect(&Hub(), &IDCCHub::NodeRemoved, window.get(),
                         [this](const QString& bone) { edits.deleted.append(bone); });
    }

    unsigned Pick(size_t count) { return count == 0 ? 0 : static_cast<unsigned>(rng() % count); }
    bool Chance(unsigned percent) { return rng() % 100 < percent; }
    QString AnyOf(const QStringList& names) { return names.isEmpty() ? QString() : names[Pick(names.size())]; }
    QStringList Bones() const { return window->GetSession().GetScene().BoneNames(); }
    QStringList Names() const { return window->GetTool()->GetModel()->GetCharacterizationNames(); }
    // Mostly a bone at the end of a chain that no required node needs: losing it leaves the chain whole, so
    // characterizations can still become valid and be locked.
    QString Victim()
    {
        const QStringList bones = Bones();
        QSet<QString> parents;
        for (const QString& bone : bones)
            parents.insert(Hub().GetBoneParent(bone));
        QStringList tips;
        for (const QString& bone : bones)
        {
            const int nodeId = NodeOf(bone);
            if (!parents.contains(bone) && (nodeId == BoneCatalogue::NoNode || !BoneCatalogue::IsRequired(nodeId)))
                tips.append(bone);
        }
        return AnyOf(Chance(75) && !tips.isEmpty() ? tips : bones);
    }
    // The model takes any edit; the figure and the name match tree refuse the user's on a locked characterization.
    bool EditableInTheViews() { return !Model().IsLocked(); }
    QString Serial(const char* stem) { return QStringLiteral("%1%2").arg(QLatin1String(stem)).arg(++serial); }

    Op NextOp()
    {
        int total = 0;
        for (const OpKind& kind : kKinds)
            total += kind.weight;
        int roll = static_cast<int>(Pick(total));
        int op = 0;
        while (roll >= kKinds[op].weight)
            roll -= kKinds[op++].weight;
        if (GetScene().BoneCount() < kMinBones)
            return OpenSkeleton;
        if (op == CreateCharacterization && Names().size() >= kMaxCharacterizations)
            return DeleteCharacterization;
        return Op(op);
    }

    // Everything a step can change that the user would see: the mapping, locks, current one, bones, modes.
    QByteArray Fingerprint() const
    {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        for (const ChurnChecks::Held& held : ChurnChecks::Take(*window->GetTool()->GetModel()))
            out << held.name << held.locked << held.bones << held.inverted;
        const CharacterizationModel* model = window->GetTool()->GetModel();
        out << Bones() << model->GetCurrentIndex() << model->IsMirrorMode();
        return bytes;
    }

    // Each operation says what it did, for the failure message; locking, unlocking and opening set `done`.
    QString Perform(Op op, bool& done);
    QString DoAssign();
    QString DoClear();
    QString DoApplyTemplate();
    QString DoMirror();
    QString DoRenameBone();
    QString DoDeleteBone();
    QString DoCreateCharacterization();
    QString DoDeleteCharacterization();
    QString DoRenameCharacterization();
    QString DoLock(bool lock, bool& done);
    QString DoSaveAndReload(bool& done);
    // Makes a characterization with the lock asked for current; false when there is none.
    bool MakeCurrentWithLock(bool locked);
    // Counts the assignment's counterpart when mirror mode gave it to the opposite node.
    void CountMirrored(int nodeId, const QString& bone, const QStringList& before);
    testing::AssertionResult CheckAfterStep(int step, const ChurnChecks::Snapshot& before, int boxesBefore);

    std::mt19937 rng {kSeed};
    int serial = 0;
    QTemporaryDir work;
    QTemporaryDir readerConfiguration;
    std::unique_ptr<MainWindow> reader;
    std::map<QString, MappingTemplate> templates;
    ChurnChecks::SceneEdits edits;
    const Characterization* unlockedByUser = nullptr;
    ModalAnswerer* answerer = nullptr;
    int boxesExpected = 0;
    int mirrored = 0;
    int refusedLocks = 0;
};

QString HostChurnTest::Perform(Op op, bool& done)
{
    switch (op)
    {
    case Assign:
        return DoAssign();
    case Clear:
        return DoClear();
    case ApplyTemplate:
        return DoApplyTemplate();
    case Mirror:
        return DoMirror();
    case RenameBone:
        return DoRenameBone();
    case DeleteBone:
        return DoDeleteBone();
    case CreateCharacterization:
        return DoCreateCharacterization();
    case DeleteCharacterization:
        return DoDeleteCharacterization();
    case RenameCharacterization:
        return DoRenameCharacterization();
    case Lock:
        return DoLock(true, done);
    case Unlock:
        return DoLock(false, done);
    case Undo:
        window->OnUndo();
        return QStringLiteral("undo");
    case Redo:
        window->OnRedo();
        return QStringLiteral("redo");
    case SaveAndReload:
        return DoSaveAndReload(done);
    case SwitchCharacterization:
    {
        const int index = static_cast<int>(Pick(Names().size()));
        Model().SetCurrentCharacterization(index);
        return QStringLiteral("make characterization %1 current").arg(index);
    }
    case OpenSkeleton:
        done = window->OpenSkeleton(Sample());
        return QStringLiteral("open the sample skeleton again");
    case OpCount:
        break;
    }
    return QString();
}

QString HostChurnTest::DoAssign()
{
    const QString bone = AnyOf(Bones());
    int nodeId = NodeOf(bone);
    if (nodeId == BoneCatalogue::NoNode || Chance(10))
        nodeId = static_cast<int>(Pick(ZELNodeCount));
    const QStringList before = Current().GetBoneNames();
    if (EditableInTheViews())
        Model().AssignBone(nodeId, bone);
    CountMirrored(nodeId, bone, before);
    return QStringLiteral("assign '%1' to %2").arg(bone, QLatin1String(BoneCatalogue::NodeName(nodeId)));
}

void HostChurnTest::CountMirrored(int nodeId, const QString& bone, const QStringList& before)
{
    if (!Model().IsMirrorMode())
        return;
    const auto exists = [this](const QString& name) { return Hub().BoneExists(name); };
    const MirrorMatcher::Mirrored counterpart = Model().GetMirrorMatcher().MirrorAssignment(nodeId, bone, exists);
    if (counterpart.IsValid() && before[counterpart.nodeId] != counterpart.bone &&
        Current().GetBone(counterpart.nodeId) == counterpart.bone)
        ++mirrored;
}

QString HostChurnTest::DoClear()
{
    if (Chance(5))
    {
        // The panel's command says once why it refuses a locked characterization.
        if (!EditableInTheViews())
            boxesExpected = answerer->Count() + 1;
        window->GetTool()->ClearCharacterization();
        return QStringLiteral("clear every node");
    }
    std::vector<int> assigned;
    for (int nodeId = 0; nodeId < ZELNodeCount; ++nodeId)
    {
        if (Current().IsAssigned(nodeId))
            assigned.push_back(nodeId);
    }
    const int nodeId = !assigned.empty() && Chance(85) ? assigned[Pick(assigned.size())]
                                                       : static_cast<int>(Pick(ZELNodeCount));
    if (EditableInTheViews())
        Model().ClearNode(nodeId);
    return QStringLiteral("clear %1").arg(QLatin1String(BoneCatalogue::NodeName(nodeId)));
}

QString HostChurnTest::DoApplyTemplate()
{
    if (Chance(25))
    {
        Model().AutoMatch();
        return QStringLiteral("auto match");
    }
    auto chosen = templates.begin();
    std::advance(chosen, Pick(templates.size()));
    const auto type = Chance(50) ? NameMatcher::Suffix : NameMatcher::Contains;
    const QStringList bones = Bones();
    if (Chance(40))
    {
        QStringList selection;
        for (const QString& bone : bones)
        {
            if (Chance(30))
                selection.append(bone);
        }
        Hub().SelectBones(selection);
        Model().ApplyTemplate(chosen->second, type, NameMatcher::SelectedBones(bones, selection), QString());
        return QStringLiteral("apply template %1 to %2 selected bones").arg(chosen->first).arg(selection.size());
    }
    const QString prefix = Model().CommonBonePrefix(bones);
    Model().ApplyTemplate(chosen->second, type, NameMatcher::BonesWithPrefix(bones, prefix), prefix);
    return QStringLiteral("apply template %1 to every bone").arg(chosen->first);
}

QString HostChurnTest::DoMirror()
{
    Hub().MirrorMatching();
    if (!Model().IsMirrorMode())
        return QStringLiteral("mirror matching off");
    QStringList sided;
    for (const QString& bone : Bones())
    {
        if (NodeOf(bone) != BoneCatalogue::NoNode && (bone.contains("Left") || bone.contains("Right")))
            sided.append(bone);
    }
    const QString bone = AnyOf(sided);
    if (bone.isEmpty())
        return QStringLiteral("mirror matching on");
    const QStringList before = Current().GetBoneNames();
    if (EditableInTheViews())
        Model().AssignBone(NodeOf(bone), bone);
    CountMirrored(NodeOf(bone), bone, before);
    return QStringLiteral("mirror matching on, assign '%1'").arg(bone);
}

QString HostChurnTest::DoRenameBone()
{
    const QStringList bones = Bones();
    const unsigned kind = Pick(10);
    const QString bone = kind < 4 ? AnyOf(bones) : Victim();
    QString name;
    if (kind < 4)
        name = bone.contains(QLatin1Char(':')) ? BaseName(bone) : QStringLiteral("rig:") + bone;
    else if (kind < 6)
        name = Serial("bone ") + QStringLiteral("|x"); // the hub drops what a name cannot hold
    else if (kind < 9)
        name = Serial("joint_");
    else
        name = AnyOf(bones); // taken: refused
    window->RenameBone(bone, name);
    return QStringLiteral("rename bone '%1' to '%2'").arg(bone, name);
}

QString HostChurnTest::DoDeleteBone()
{
    QStringList victims {Victim()};
    if (Chance(20))
        victims.append(Victim());
    victims.removeDuplicates();
    window->DeleteBones(victims);
    return QStringLiteral("delete bones %1").arg(victims.join(QStringLiteral(", ")));
}

QString HostChurnTest::DoCreateCharacterization()
{
    const QString name = Chance(15) ? AnyOf(Names()) : Serial("Character ");
    window->GetTool()->CreateCharacterization(name);
    return QStringLiteral("create characterization '%1'").arg(name);
}

QString HostChurnTest::DoDeleteCharacterization()
{
    const QString name = AnyOf(Names());
    // The panel's delete command, or the user deleting the character object in the scene.
    if (Chance(50))
    {
        Hub().DeleteCharacter(name, false);
        return QStringLiteral("delete characterization '%1'").arg(name);
    }
    Hub().DeleteCharacterObject(name);
    return QStringLiteral("delete character object '%1'").arg(name);
}

QString HostChurnTest::DoRenameCharacterization()
{
    const QString name = AnyOf(Names());
    const QString newName = Chance(15) ? AnyOf(Names()) : Serial("Renamed ");
    Hub().RenameCharacterObject(name, newName);
    return QStringLiteral("rename character object '%1' to '%2'").arg(name, newName);
}

bool HostChurnTest::MakeCurrentWithLock(bool locked)
{
    if (Model().IsLocked() == locked)
        return true;
    QList<int> candidates;
    for (int index = 0; index < Names().size(); ++index)
    {
        if (Model().GetCharacterizations()[index]->IsLocked() == locked)
            candidates.append(index);
    }
    return !candidates.isEmpty() && Model().SetCurrentCharacterization(candidates[Pick(candidates.size())]);
}

QString HostChurnTest::DoLock(bool lock, bool& done)
{
    // Mostly the current one, else another that can be locked or unlocked.
    if (Model().IsLocked() == lock && (Chance(30) || !MakeCurrentWithLock(!lock)))
        return lock ? QStringLiteral("lock (already locked)") : QStringLiteral("unlock (not locked)");
    QString how;
    if (lock && Model().GetValidationState() == Error && Chance(60))
    {
        // The user matches it again before locking it.
        window->GetTool()->ClearCharacterization();
        Model().AutoMatch();
        how = QStringLiteral(" after matching it again");
    }
    if (!lock)
        unlockedByUser = &Current();
    const int boxes = answerer->Count();
    window->OnToggleLock();
    done = Model().IsLocked() == lock;
    if (lock && !done)
    {
        // Refused, with exactly one message for the user.
        boxesExpected = boxes + 1;
        ++refusedLocks;
    }
    return QStringLiteral("%1 '%2'%3").arg(lock ? "lock" : "unlock", Current().GetName(), how);
}

QString HostChurnTest::DoSaveAndReload(bool& done)
{
    const QString path = QDir(work.path()).filePath(QStringLiteral("churn.zelproj"));
    const ChurnChecks::Snapshot before = ChurnChecks::Take(Model());
    const QString current = Current().GetName();
    const QStringList bones = Bones();
    done = window->SaveProject(path) && window->OpenProject(path);
    EXPECT_TRUE(done);
    EXPECT_TRUE(ChurnChecks::SameContent(before, ChurnChecks::Take(Model())));
    EXPECT_EQ(Current().GetName(), current);
    EXPECT_EQ(Bones(), bones);
    return QStringLiteral("save and reload the project");
}

testing::AssertionResult HostChurnTest::CheckAfterStep(int step, const ChurnChecks::Snapshot& before,
                                                       int boxesBefore)
{
    using namespace ChurnChecks;
    const int boxes = answerer->Count() - boxesBefore;
    const int wanted = boxesExpected > 0 ? 1 : 0;
    if (boxes != wanted)
        return testing::AssertionFailure() << boxes << " message boxes instead of " << wanted << ": "
                                           << answerer->texts.join(" | ").toStdString();
    if (testing::AssertionResult ok = LockRespected(before, edits, unlockedByUser); !ok)
        return ok;
    if (testing::AssertionResult ok = NoBoneMissingFromScene(Model(), GetScene()); !ok)
        return ok;
    if (testing::AssertionResult ok = AttachCountsAgree(Model(), GetScene()); !ok)
        return ok;
    if (testing::AssertionResult ok = MarksAgreeWithFreshRun(Model(), Hub()); !ok)
        return ok;
    if (step % kRoundTripEvery == 0)
        return SurvivesSaveAndLoad(Session(), reader->GetSession(), work.path());
    return testing::AssertionSuccess();
}

TEST_F(HostChurnTest, RandomOperationsKeepEveryInvariant)
{
    ModalAnswerer boxes(QMessageBox::Ok);
    answerer = &boxes;
    std::array<Tally, OpCount> tallies {};
    QStringList recent;
    const auto start = std::chrono::steady_clock::now();
    for (int step = 0; step < kSteps; ++step)
    {
        const Op op = NextOp();
        const ChurnChecks::Snapshot before = ChurnChecks::Take(Model());
        const QByteArray fingerprint = Fingerprint();
        const bool locked = Model().IsLocked();
        const int boxesBefore = boxes.Count();
        edits = {};
        unlockedByUser = nullptr;
        boxesExpected = 0;
        bool done = false;
        const QString what = Perform(op, done);
        recent.append(QStringLiteral("%1: %2").arg(step).arg(what));
        if (recent.size() > 8)
            recent.removeFirst();
        Tally& tally = tallies[op];
        ++tally.tried;
        tally.whileLocked += locked ? 1 : 0;
        // Locking, unlocking and opening say themselves whether they succeeded; the rest changed something or not.
        const bool told = op == Lock || op == Unlock || op == SaveAndReload || op == OpenSkeleton;
        tally.done += (told ? done : Fingerprint() != fingerprint) ? 1 : 0;
        const testing::AssertionResult kept = CheckAfterStep(step, before, boxesBefore);
        if (!kept || HasFailure())
        {
            ADD_FAILURE() << "seed " << kSeed << ", step " << step << " (" << what.toStdString()
                          << "): " << kept.message() << "\nThe steps before it:\n  "
                          << recent.join(QStringLiteral("\n  ")).toStdString();
            return;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("Host churn, seed %u: %d steps in %.1f s\n", kSeed, kSteps, seconds);
    std::printf("  %-26s %6s %6s %12s\n", "operation", "tried", "done", "while locked");
    for (int op = 0; op < OpCount; ++op)
        std::printf("  %-26s %6d %6d %12d\n", kKinds[op].name, tallies[op].tried, tallies[op].done,
                    tallies[op].whileLocked);
    std::printf("  mirrored assignments %d, refused locks %d\n", mirrored, refusedLocks);
    for (int op = 0; op < OpCount; ++op)
    {
        EXPECT_GE(tallies[op].done, AtLeast(kKinds[op].minimumDone)) << kKinds[op].name;
        EXPECT_GE(tallies[op].whileLocked, AtLeast(kKinds[op].minimumWhileLocked)) << kKinds[op].name;
    }
    EXPECT_GE(mirrored, AtLeast(200));
    // Enough refusals to try that path well; how many depends on how often the churned skeleton stays recognizable
    // (with a few bones deleted it now mostly does, and auto match leaves fewer errors to refuse a lock for).
    EXPECT_GE(refusedLocks, AtLeast(250));
}

} // namespace
