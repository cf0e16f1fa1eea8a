#pragma once

#include <gtest/gtest.h>

#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/TemplateLibrary.h>

// One recognizer over the shipped templates for a whole suite: reading the templates is the slow part.
class RecognizerSuite : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        sLibrary = new TemplateLibrary(QString());
        sRecognizer = new SkeletonRecognizer(*sLibrary);
    }

    static void TearDownTestSuite()
    {
        delete sRecognizer;
        delete sLibrary;
        sRecognizer = nullptr;
        sLibrary = nullptr;
    }

    static inline TemplateLibrary* sLibrary = nullptr;
    static inline SkeletonRecognizer* sRecognizer = nullptr;
};
