#pragma once

#include <cstdint>
#include <type_traits>

#include <zelkin/SolverExport.h>
#include <zelkin/ZELSolver.h>

// Per-joint reference geometry. The field order is the stream's joint record, word for word.
class ZELKIN_SOLVER_EXPORT CharacterJointGeometry
{
public:
    enum LimitEnableBit : int32_t
    {
        MinLimitX = 0x1,
        MinLimitY = 0x2,
        MinLimitZ = 0x4,
        MaxLimitX = 0x8,
        MaxLimitY = 0x10,
        MaxLimitZ = 0x20
    };

    CharacterJointGeometry();

    // Identity rotations, unit scale, zero translation and limits, no limit enabled, Euler XYZ.
    void Reset();

    bool operator==(const CharacterJointGeometry& other) const;
    bool operator!=(const CharacterJointGeometry& other) const;

    const float* GetTranslate() const { return mTranslate; }
    void SetTranslate(float x, float y, float z);
    const float* GetRotateQ() const { return mRotate; }
    void SetRotateQ(float x, float y, float z, float w);
    const float* GetScale() const { return mScale; }
    void SetScale(float x, float y, float z);
    const float* GetPreRotQ() const { return mPreRot; }
    void SetPreRotQ(float x, float y, float z, float w);
    const float* GetPostRotQ() const { return mPostRot; }
    void SetPostRotQ(float x, float y, float z, float w);
    const float* GetParentOffsetRotateQ() const { return mParentOffsetRotate; }
    void SetParentOffsetRotateQ(float x, float y, float z, float w);
    const float* GetMinRLimit() const { return mMinRLimit; }
    void SetMinRLimit(float x, float y, float z);
    const float* GetMaxRLimit() const { return mMaxRLimit; }
    void SetMaxRLimit(float x, float y, float z);

    bool HasMinRLimitX() const { return (mLimitEnableMask & MinLimitX) != 0; }
    bool HasMinRLimitY() const { return (mLimitEnableMask & MinLimitY) != 0; }
    bool HasMinRLimitZ() const { return (mLimitEnableMask & MinLimitZ) != 0; }
    bool HasMaxRLimitX() const { return (mLimitEnableMask & MaxLimitX) != 0; }
    bool HasMaxRLimitY() const { return (mLimitEnableMask & MaxLimitY) != 0; }
    bool HasMaxRLimitZ() const { return (mLimitEnableMask & MaxLimitZ) != 0; }
    void SetMinRLimitEnable(bool x, bool y, bool z);
    void SetMaxRLimitEnable(bool x, bool y, bool z);
    int32_t GetLimitEnableMask() const { return mLimitEnableMask; }
    void SetLimitEnableMask(int32_t mask) { mLimitEnableMask = mask; }

    ZELRotationOrder GetRotationOrder() const { return static_cast<ZELRotationOrder>(mRotationOrder); }
    void SetRotationOrder(ZELRotationOrder order) { mRotationOrder = static_cast<int32_t>(order); }

private:
    float mTranslate[3];
    float mRotate[4];
    float mScale[3];
    float mPreRot[4];
    float mPostRot[4];
    float mMaxRLimit[3];
    float mMinRLimit[3];
    int32_t mLimitEnableMask;
    float mParentOffsetRotate[4];
    int32_t mRotationOrder;
};

static_assert(sizeof(CharacterJointGeometry) == 120, "one joint record of the stream");
static_assert(std::is_standard_layout<CharacterJointGeometry>::value, "records are copied as words");
