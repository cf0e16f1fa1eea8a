#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <zelkin/RotationConversion.h>

namespace
{
constexpr double Pi = 3.14159265358979323846;

struct Vec
{
    double x, y, z;
};

// Rotates v by the unit quaternion q (x, y, z, w).
Vec Rotate(const double q[4], Vec v)
{
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    const double tx = 2 * (y * v.z - z * v.y), ty = 2 * (z * v.x - x * v.z), tz = 2 * (x * v.y - y * v.x);
    return {v.x + w * tx + (y * tz - z * ty), v.y + w * ty + (z * tx - x * tz), v.z + w * tz + (x * ty - y * tx)};
}

Vec RotateAbout(int axis, double degrees, Vec v)
{
    const double a = degrees * Pi / 180.0, c = std::cos(a), s = std::sin(a);
    switch (axis)
    {
    case 0: return {v.x, c * v.y - s * v.z, s * v.y + c * v.z};
    case 1: return {c * v.x + s * v.z, v.y, -s * v.x + c * v.z};
    default: return {c * v.x - s * v.y, s * v.x + c * v.y, v.z};
    }
}

struct OrderCase
{
    ZELRotationOrder order;
    int axes[3];
};

const OrderCase Orders[] = {
    {ZELEulerXYZ, {0, 1, 2}}, {ZELEulerXYX, {0, 1, 0}}, {ZELEulerXZY, {0, 2, 1}}, {ZELEulerXZX, {0, 2, 0}},
    {ZELEulerYZX, {1, 2, 0}}, {ZELEulerYZY, {1, 2, 1}}, {ZELEulerYXZ, {1, 0, 2}}, {ZELEulerYXY, {1, 0, 1}},
    {ZELEulerZXY, {2, 0, 1}}, {ZELEulerZXZ, {2, 0, 2}}, {ZELEulerZYX, {2, 1, 0}}, {ZELEulerZYZ, {2, 1, 2}},
    {ZELSphericXYZ, {0, 1, 2}},
};

bool Repeated(const OrderCase& c)
{
    return c.axes[0] == c.axes[2];
}

// The angle of each rotation in sequence, read from the triple as documented.
double AngleAt(const OrderCase& c, const double degrees[3], int position)
{
    return Repeated(c) ? degrees[position] : degrees[c.axes[position]];
}

// Independent of the code under test: apply the elementary rotations one after the other.
Vec ApplyEuler(const OrderCase& c, const double degrees[3], Vec v)
{
    for (int position = 0; position < 3; ++position)
        v = RotateAbout(c.axes[position], AngleAt(c, degrees, position), v);
    return v;
}

void ExpectSameRotation(const OrderCase& c, const double degrees[3], const double q[4], double tolerance)
{
    for (const Vec probe : {Vec {1, 0, 0}, Vec {0, 1, 0}, Vec {0, 0, 1}})
    {
        const Vec expected = ApplyEuler(c, degrees, probe);
        const Vec actual = Rotate(q, probe);
        EXPECT_NEAR(actual.x, expected.x, tolerance);
        EXPECT_NEAR(actual.y, expected.y, tolerance);
        EXPECT_NEAR(actual.z, expected.z, tolerance);
    }
}

void RandomAngles(std::mt19937& random, const OrderCase& c, double degrees[3])
{
    std::uniform_real_distribution<double> full(-179.9, 179.9);
    // Within a few degrees of gimbal lock a float quaternion no longer pins the first and last angle down to
    // 1e-4 degrees; GimbalLockKeepsTheRotation covers that zone.
    std::uniform_real_distribution<double> middle = Repeated(c) ? std::uniform_real_distribution<double>(5.0, 175.0)
                                                                : std::uniform_real_distribution<double>(-85.0, 85.0);
    for (int position = 0; position < 3; ++position)
    {
        const double angle = position == 1 ? middle(random) : full(random);
        (Repeated(c) ? degrees[position] : degrees[c.axes[position]]) = angle;
    }
}
} // namespace

TEST(RotationConversion, EulerToQuaternionFollowsTheDocumentedOrderOfRotations)
{
    std::mt19937 random(7);
    for (const OrderCase& c : Orders)
    {
        SCOPED_TRACE(int(c.order));
        for (int n = 0; n < 200; ++n)
        {
            double degrees[3];
            RandomAngles(random, c, degrees);
            double q[4];
            RotationConversion::EulerToQuaternion(degrees, c.order, q);
            ExpectSameRotation(c, degrees, q, 1e-12);
        }
    }
}

TEST(RotationConversion, FloatQuaternionsRoundTripEveryAngleWithinATenThousandthOfADegree)
{
    std::mt19937 random(11);
    for (const OrderCase& c : Orders)
    {
        SCOPED_TRACE(int(c.order));
        for (int n = 0; n < 2000; ++n)
        {
            double degrees[3];
            RandomAngles(random, c, degrees);
            float q[4];
            RotationConversion::EulerToQuaternion(degrees, c.order, q);
            double back[3];
            RotationConversion::QuaternionToEuler(q, c.order, back);
            for (int axis = 0; axis < 3; ++axis)
                ASSERT_NEAR(back[axis], degrees[axis], 1e-4) << "angles " << degrees[0] << " " << degrees[1] << " " << degrees[2];
        }
    }
}

TEST(RotationConversion, GimbalLockKeepsTheRotation)
{
    for (const OrderCase& c : Orders)
    {
        SCOPED_TRACE(int(c.order));
        const double middles[] = {Repeated(c) ? 0.0 : 90.0, Repeated(c) ? 180.0 : -90.0, Repeated(c) ? 0.3 : 89.7,
                                  Repeated(c) ? 179.99 : -89.99};
        for (double middle : middles)
        {
            double degrees[3];
            (Repeated(c) ? degrees[0] : degrees[c.axes[0]]) = 30.0;
            (Repeated(c) ? degrees[1] : degrees[c.axes[1]]) = middle;
            (Repeated(c) ? degrees[2] : degrees[c.axes[2]]) = -45.0;
            float q[4];
            RotationConversion::EulerToQuaternion(degrees, c.order, q);
            double back[3];
            RotationConversion::QuaternionToEuler(q, c.order, back);
            double qBack[4];
            RotationConversion::EulerToQuaternion(back, c.order, qBack);
            ExpectSameRotation(c, degrees, qBack, 1e-6);
        }
    }
}

TEST(RotationConversion, KnownValues)
{
    // A quarter turn about Z in XYZ order is (0, 0, 90); in ZYX order the triple still lists X, Y, Z.
    const float quarterZ[4] = {0.0f, 0.0f, float(std::sqrt(0.5)), float(std::sqrt(0.5))};
    double degrees[3];
    RotationConversion::QuaternionToEuler(quarterZ, ZELEulerXYZ, degrees);
    EXPECT_NEAR(degrees[0], 0.0, 1e-5);
    EXPECT_NEAR(degrees[1], 0.0, 1e-5);
    EXPECT_NEAR(degrees[2], 90.0, 1e-5);
    RotationConversion::QuaternionToEuler(quarterZ, ZELEulerZYX, degrees);
    EXPECT_NEAR(degrees[2], 90.0, 1e-5);
    // In ZXZ order the same turn is the first rotation.
    RotationConversion::QuaternionToEuler(quarterZ, ZELEulerZXZ, degrees);
    EXPECT_NEAR(degrees[0] + degrees[2], 90.0, 1e-5);
    EXPECT_NEAR(degrees[1], 0.0, 1e-5);

    const float identity[4] = {0, 0, 0, 1};
    const float zero[4] = {0, 0, 0, 0};
    const float negated[4] = {0, 0, -float(std::sqrt(0.5)), -float(std::sqrt(0.5))};
    for (const float* q : {identity, zero})
    {
        RotationConversion::QuaternionToEuler(q, ZELEulerYZX, degrees);
        EXPECT_EQ(degrees[0], 0.0);
        EXPECT_EQ(degrees[1], 0.0);
        EXPECT_EQ(degrees[2], 0.0);
        EXPECT_FALSE(std::signbit(degrees[0]) || std::signbit(degrees[1]) || std::signbit(degrees[2]));
    }
    const float scaled[4] = {0.0f, 0.0f, 3.0f, 3.0f};
    for (const float* q : {negated, scaled}) // -q and any multiple of q are the same rotation
    {
        RotationConversion::QuaternionToEuler(q, ZELEulerXYZ, degrees);
        EXPECT_NEAR(degrees[2], 90.0, 1e-5);
    }
}
