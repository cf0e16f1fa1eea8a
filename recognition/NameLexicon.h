#pragma once

#include <QStringView>

#include "BoneName.h"

// The words bone names are made of, in English, in romanised and in Japanese names.
struct WordMeaning
{
    Role role = Role::Count; // Role::Count: the word names no role
    float weight = 0.0f;
    Role other = Role::Count; // a second reading of an ambiguous word ("shoulder": clavicle, or the upper arm)
    float otherWeight = 0.0f;
    Side side = Side::None;
    bool modifier = false; // "upper", "fore", "base": changes the word beside it
};

namespace lexicon
{
// A lower-case word, or null.
const WordMeaning* Find(QStringView word);
// The word two adjacent words make together ("upper" "arm", "ashi" "kubi"), or null.
const WordMeaning* Compound(QStringView first, QStringView second);
// The longest Japanese word starting at `at`, with its length; null when none starts there.
const WordMeaning* FindJapanese(QStringView text, int at, int& length);
} // namespace lexicon
