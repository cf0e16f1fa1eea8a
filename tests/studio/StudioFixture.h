#pragma once

#include <memory>

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <zelkin/Characterization.h>
#include <zelkin/CharacterTool.h>
#include <zelkin/CharacterizationModel.h>

#include "MainWindow.h"

// A studio window with a configuration of its own, shown on the offscreen platform.
class StudioFixture : public testing::Test
{
protected:
    static QString Sample() { return QStringLiteral(ZELKIN_SOURCE_DIR "/examples/sample_humanoid.bvh"); }
    static QString Mixamo() { return QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"); }

    void SetUp() override
    {
        ASSERT_TRUE(configuration.isValid());
        window = std::make_unique<MainWindow>(configuration.path());
        window->show();
        QApplication::processEvents();
    }

    StudioSession& Session() { return window->GetSession(); }
    Scene& GetScene() { return Session().GetScene(); }
    SceneHub& Hub() { return Session().GetHub(); }
    CharacterizationModel& Model() { return *window->GetTool()->GetModel(); }
    Characterization& Current() { return *Model().GetCurrentCharacterization(); }

    QTemporaryDir configuration;
    std::unique_ptr<MainWindow> window;
};
