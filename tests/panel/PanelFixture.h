#pragma once

#include <memory>

#include <QWidget>

#include <gtest/gtest.h>

#include <zelkin/CharacterTool.h>
#include <zelkin/Characterization.h>
#include <zelkin/CharacterizationModel.h>

#include "PrivateAppData.h"
#include "TestHub.h"
#include "TestScenes.h"

inline testing::Environment* const gPrivateAppData = testing::AddGlobalTestEnvironment(new PrivateAppData);

// The panel embedded in a host whose scene is the corpus's Mixamo rig (65 bones, "mixamorig:" names), each test
// starting from an empty configuration.
struct MixamoPanel : testing::Test
{
    void SetUp() override
    {
        PrivateAppData::Clear();
        QString error;
        ASSERT_TRUE(testscenes::LoadSkeleton(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"), hub, error))
            << error.toStdString();
        tool = std::make_unique<CharacterTool>(false, "", "", &host, &hub);
        model = tool->GetModel();
        hub.UpdateCharacterList({Characterization::DefaultName()}); // the host has the character
    }

    Characterization& Current() const { return *tool->GetCharacterization(); }

    static QString Rig(const char* bone) { return QStringLiteral("mixamorig:") + QLatin1String(bone); }

    TestHub hub;
    QWidget host;
    std::unique_ptr<CharacterTool> tool;
    CharacterizationModel* model = nullptr;
};
