#pragma once

#include <QString>

#include <vector>

#include <zelkin/NameMatcher.h>
#include <zelkin/SkeletonRecognizer.h>

#include "ValidationReport.h"

class CharacterizationModel;

// How `zelkin characterize` maps a skeleton's bones to nodes: automatically from the skeleton, unless the user
// names a template (a library name or an ".xml" file) or a prefix, or no humanoid is found; then by templates:
// the named one, else the library template that maps the most required nodes, then the most nodes.
struct SkeletonMapping
{
    QString templateArgument; // empty: choose
    NameMatcher::MatchType type = NameMatcher::Suffix;
    QString prefix; // empty: every bone of the scene
    QString character; // --character: a 1-based index or a character's root or hips bone; empty: every one

    bool UsesTemplates() const { return !templateArgument.isEmpty() || !prefix.isEmpty(); }
    // The recognized characters to characterize, in order. False, with an error line, when --character names none.
    bool ChooseCharacters(const SkeletonRecognizer::Result& result, const std::vector<SkeletonRecognizer::Bone>& bones,
                          std::vector<int>& chosen, QString& error) const;

    // Assigns the matched bones through the model (whose hub is over the skeleton). False, with an error line,
    // when the named template cannot be read or no bone has the prefix.
    bool Apply(CharacterizationModel& model, ValidationReport::Mapping& mapping, QString& error) const;
};
