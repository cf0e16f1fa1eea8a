#include "StateRepresentation.h"

StateRepresentation::StateRepresentation()
{
    mSuffixes.insert(Plain, ".png");
    mSuffixes.insert(ValidState, "_Valid.png");
    mSuffixes.insert(WarningState, "_Warn.png");
    mSuffixes.insert(ErrorState, "_Err.png");
    mSuffixes.insert(ErrorSelected, "_Err_Sel.png");
    mSuffixes.insert(ErrorPicked, "_Err_Pick.png");
    mSuffixes.insert(WarningSelected, "_Warn_Sel.png");
    mSuffixes.insert(WarningPicked, "_Warn_Pick.png");
    mSuffixes.insert(ValidSelected, "_Valid_Sel.png");
    mSuffixes.insert(ValidPicked, "_Valid_Pick.png");
    mSuffixes.insert(PlainPicked, "_Pick.png");
    mSuffixes.insert(PlainSelected, "_Sel.png");
}

bool StateRepresentation::Contains(int index) const
{
    return mSuffixes.contains(index);
}

QString StateRepresentation::Suffix(int index) const
{
    return mSuffixes.value(index);
}

int StateRepresentation::OverlayIndex(int state, int selectionMode)
{
    switch (selectionMode) {
    case Selected:
        switch (state) {
        case ValidState: return ValidSelected;
        case WarningState: return WarningSelected;
        case ErrorState: return ErrorSelected;
        default: return PlainSelected;
        }
    case Picked:
        switch (state) {
        case ValidState: return ValidPicked;
        case WarningState: return WarningPicked;
        case ErrorState: return ErrorPicked;
        default: return PlainPicked;
        }
    default:
        return Unset;
    }
}
