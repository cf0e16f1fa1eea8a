#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

#include <QString>
#include <QStringList>

// What a bone's name says it is. Names are evidence, never the only rule: the recognizer weighs them against the
// skeleton's shape.
enum class Role : uint8_t
{
    Hips,
    Spine,
    Chest,
    Neck,
    Head,
    Clavicle,
    UpperArm,
    ForeArm,
    Hand,
    Thigh,
    Shin,
    Foot,
    Toe,
    Thumb,
    Index,
    Middle,
    Ring,
    Pinky,
    Finger,
    Metacarpal,
    FingerBase,
    Twist,
    End,
    Helper,
    Root,
    Face,
    Hair,
    Cloth,
    Tail,
    Prop,
    Count
};

enum class Side : uint8_t
{
    None,
    Left,
    Right
};

constexpr int RoleCount = static_cast<int>(Role::Count);

struct NameReading
{
    Side side = Side::None;
    // How strongly each role is named, 0 to 1.
    std::array<float, RoleCount> roles {};

    float Of(Role role) const { return roles[static_cast<int>(role)]; }
    bool SaysAnything() const;
    // The most strongly named role and its weight (Role::Count and 0 when the name says nothing).
    Role Strongest(float* weight = nullptr) const;
    // Positive when the name says one of `roles`, negative when it clearly says something else, 0 when silent.
    float Support(std::initializer_list<Role> roles) const;
    float Support(Role role) const { return Support({role}); }
    // The same, and wrong when the name gives the other side.
    float Support(Role role, Side side) const;
    // Hears another source (a template): raises a role the name may have missed.
    void Hear(Role role, Side side, float weight);
    // Any of the words that mark a bone as no body part of its own (twist, end, helper, face, hair, ...).
    float Accessory() const;
};

// Reads bone names: namespaces and separators of every kind, case changes, digits, full-width characters, side
// markers in all the usual forms (L, _r, .L, Left, lShldr, hidari, 左), and role words in English, in romanised
// and in Japanese names.
class BoneName
{
public:
    static NameReading Read(const QString& name);
    // The lower-case words of a name after every split, for tests and reports.
    static QStringList Words(const QString& name);
};
