#pragma once

#include <memory>
#include <vector>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

class Characterization;
class CharacterizationModel;
class IDCCHub;
class Scene;
class StudioSession;

// What the host churn test holds true after every step, each check saying exactly what broke.
namespace ChurnChecks
{
struct Held
{
    std::weak_ptr<Characterization> live;
    QString name;
    bool locked = false;
    QStringList bones;
    QList<bool> inverted;
};
using Snapshot = std::vector<Held>;

// The scene edits one step made, as the hub announced them.
struct SceneEdits
{
    QList<QPair<QString, QString>> renames; // old name, new name, in order
    QStringList deleted;
};

Snapshot Take(const CharacterizationModel& model);
// By name, lock, mapping and inversion; the objects themselves may differ (a project read again).
testing::AssertionResult SameContent(const Snapshot& expected, const Snapshot& actual);

testing::AssertionResult NoBoneMissingFromScene(const CharacterizationModel& model, const Scene& scene);
// A bone's attach count is the number of nodes holding it, over every characterization.
testing::AssertionResult AttachCountsAgree(const CharacterizationModel& model, const Scene& scene);
// The model's overall result, marks and messages against a model that validates the same mapping from scratch.
testing::AssertionResult MarksAgreeWithFreshRun(const CharacterizationModel& model, IDCCHub& hub);
// A characterization locked before the step keeps its mapping (following renamed bones) and its lock, unless it
// held a deleted bone (which unlocks it and clears the bone) or the user unlocked it.
testing::AssertionResult LockRespected(const Snapshot& before, const SceneEdits& edits,
                                       const Characterization* unlockedByUser);
// Saves the live session, opens the file in the reader and saves it again: both files and the reader hold the
// live characterizations (names, locks, mappings, stream bytes, current) and the same bones.
testing::AssertionResult SurvivesSaveAndLoad(StudioSession& live, StudioSession& reader, const QString& folder);
} // namespace ChurnChecks
