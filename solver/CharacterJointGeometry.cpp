#include <zelkin/CharacterJointGeometry.h>

namespace {

void assign3(float* target, float x, float y, float z)
{
    target[0] = x;
    target[1] = y;
    target[2] = z;
}

void assign4(float* target, float x, float y, float z, float w)
{
    assign3(target, x, y, z);
    target[3] = w;
}

template <int Count>
bool sameFloats(const float (&a)[Count], const float (&b)[Count])
{
    for (int i = 0; i < Count; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}

// The three axis bits of one limit sit side by side, starting at xBit.
int32_t withAxisBits(int32_t mask, int32_t xBit, bool x, bool y, bool z)
{
    const int32_t axisBits = xBit * 7;
    return (mask & ~axisBits) | (x ? xBit : 0) | (y ? xBit << 1 : 0) | (z ? xBit << 2 : 0);
}

} // namespace

CharacterJointGeometry::CharacterJointGeometry()
{
    Reset();
}

void CharacterJointGeometry::Reset()
{
    assign3(mTranslate, 0.0f, 0.0f, 0.0f);
    assign4(mRotate, 0.0f, 0.0f, 0.0f, 1.0f);
    assign3(mScale, 1.0f, 1.0f, 1.0f);
    assign4(mPreRot, 0.0f, 0.0f, 0.0f, 1.0f);
    assign4(mPostRot, 0.0f, 0.0f, 0.0f, 1.0f);
    assign3(mMaxRLimit, 0.0f, 0.0f, 0.0f);
    assign3(mMinRLimit, 0.0f, 0.0f, 0.0f);
    mLimitEnableMask = 0;
    assign4(mParentOffsetRotate, 0.0f, 0.0f, 0.0f, 1.0f);
    mRotationOrder = ZELEulerXYZ;
}

bool CharacterJointGeometry::operator==(const CharacterJointGeometry& other) const
{
    return sameFloats(mTranslate, other.mTranslate) && sameFloats(mRotate, other.mRotate)
        && sameFloats(mScale, other.mScale) && sameFloats(mPreRot, other.mPreRot)
        && sameFloats(mPostRot, other.mPostRot) && sameFloats(mMaxRLimit, other.mMaxRLimit)
        && sameFloats(mMinRLimit, other.mMinRLimit) && mLimitEnableMask == other.mLimitEnableMask
        && sameFloats(mParentOffsetRotate, other.mParentOffsetRotate) && mRotationOrder == other.mRotationOrder;
}

bool CharacterJointGeometry::operator!=(const CharacterJointGeometry& other) const
{
    return !(*this == other);
}

void CharacterJointGeometry::SetTranslate(float x, float y, float z)
{
    assign3(mTranslate, x, y, z);
}

void CharacterJointGeometry::SetRotateQ(float x, float y, float z, float w)
{
    assign4(mRotate, x, y, z, w);
}

void CharacterJointGeometry::SetScale(float x, float y, float z)
{
    assign3(mScale, x, y, z);
}

void CharacterJointGeometry::SetPreRotQ(float x, float y, float z, float w)
{
    assign4(mPreRot, x, y, z, w);
}

void CharacterJointGeometry::SetPostRotQ(float x, float y, float z, float w)
{
    assign4(mPostRot, x, y, z, w);
}

void CharacterJointGeometry::SetParentOffsetRotateQ(float x, float y, float z, float w)
{
    assign4(mParentOffsetRotate, x, y, z, w);
}

void CharacterJointGeometry::SetMinRLimit(float x, float y, float z)
{
    assign3(mMinRLimit, x, y, z);
}

void CharacterJointGeometry::SetMaxRLimit(float x, float y, float z)
{
    assign3(mMaxRLimit, x, y, z);
}

// Each limit's bits are replaced as a whole; the other limit's bits and any unknown high bits stay.
void CharacterJointGeometry::SetMinRLimitEnable(bool x, bool y, bool z)
{
    mLimitEnableMask = withAxisBits(mLimitEnableMask, MinLimitX, x, y, z);
}

void CharacterJointGeometry::SetMaxRLimitEnable(bool x, bool y, bool z)
{
    mLimitEnableMask = withAxisBits(mLimitEnableMask, MaxLimitX, x, y, z);
}
