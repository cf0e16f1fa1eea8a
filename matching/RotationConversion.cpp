#include <zelkin/RotationConversion.h>

#include <cmath>

namespace
{
constexpr double Pi = 3.14159265358979323846;
constexpr double DegreesPerRadian = 180.0 / Pi;

// Below this the middle rotation is taken as gimbal-locked; float quaternions carry about 1e-7 of noise.
constexpr double GimbalThreshold = 1e-7;

struct Sequence
{
    int first;
    int second;
    int third;
    bool repeated() const { return first == third; }
    // Odd when the second axis is not the cyclic successor of the first.
    bool odd() const { return second != (first + 1) % 3; }
};

Sequence SequenceOf(ZELRotationOrder order)
{
    static const Sequence sequences[ZELRotationOrderCount] = {
        {0, 1, 2}, {0, 1, 0}, {0, 2, 1}, {0, 2, 0}, {1, 2, 0}, {1, 2, 1}, {1, 0, 2},
        {1, 0, 1}, {2, 0, 1}, {2, 0, 2}, {2, 1, 0}, {2, 1, 2}, {0, 1, 2}, // Spheric XYZ reads as XYZ
    };
    const int index = int(order);
    return index >= 0 && index < ZELRotationOrderCount ? sequences[index] : sequences[0];
}

// Hamilton product a * b, both (x, y, z, w).
void Multiply(const double a[4], const double b[4], double out[4])
{
    const double x = a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1];
    const double y = a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0];
    const double z = a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3];
    const double w = a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2];
    out[0] = x;
    out[1] = y;
    out[2] = z;
    out[3] = w;
}

void AxisRotation(int axis, double degrees, double q[4])
{
    const double half = degrees / DegreesPerRadian / 2.0;
    q[0] = q[1] = q[2] = 0.0;
    q[axis] = std::sin(half);
    q[3] = std::cos(half);
}

// Rotation matrix for column vectors, m[row][column].
void ToMatrix(const float qf[4], double m[3][3])
{
    double q[4] = {qf[0], qf[1], qf[2], qf[3]};
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    if (!(length > 0.0) || !std::isfinite(length))
    {
        q[0] = q[1] = q[2] = 0.0;
        q[3] = 1.0;
    }
    else
        for (double& c : q)
            c /= length;
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    m[0][0] = 1 - 2 * (y * y + z * z);
    m[0][1] = 2 * (x * y - z * w);
    m[0][2] = 2 * (x * z + y * w);
    m[1][0] = 2 * (x * y + z * w);
    m[1][1] = 1 - 2 * (x * x + z * z);
    m[1][2] = 2 * (y * z - x * w);
    m[2][0] = 2 * (x * z - y * w);
    m[2][1] = 2 * (y * z + x * w);
    m[2][2] = 1 - 2 * (x * x + y * y);
}

// Angles of the first, second and third rotation, in radians (after Shoemake, static frame).
void Decompose(const double m[3][3], const Sequence& s, double angles[3])
{
    const int i = s.first;
    const int j = s.second;
    const int k = 3 - i - j;
    if (s.repeated())
    {
        const double sy = std::hypot(m[i][j], m[i][k]);
        angles[1] = std::atan2(sy, m[i][i]);
        if (sy > GimbalThreshold)
        {
            angles[0] = std::atan2(m[i][j], m[i][k]);
            angles[2] = std::atan2(m[j][i], -m[k][i]);
        }
        else
        {
            angles[0] = std::atan2(-m[j][k], m[j][j]);
            angles[2] = 0.0;
        }
    }
    else
    {
        const double cy = std::hypot(m[i][i], m[j][i]);
        angles[1] = std::atan2(-m[k][i], cy);
        if (cy > GimbalThreshold)
        {
            angles[0] = std::atan2(m[k][j], m[k][k]);
            angles[2] = std::atan2(m[j][i], m[i][i]);
        }
        else
        {
            angles[0] = std::atan2(-m[j][k], m[j][j]);
            angles[2] = 0.0;
        }
    }
    if (s.odd())
        for (int n = 0; n < 3; ++n)
            angles[n] = -angles[n];
    // Keep the middle angle of a repeated axis in [0, 180]: Ri(c) Rj(-b) Ri(a) = Ri(c + 180) Rj(b) Ri(a + 180).
    if (s.repeated() && angles[1] < 0.0)
    {
        angles[1] = -angles[1];
        angles[0] += angles[0] > 0.0 ? -Pi : Pi;
        angles[2] += angles[2] > 0.0 ? -Pi : Pi;
    }
}

// Sequence positions to the written triple: by axis for distinct axes, by position for a repeated one.
int SlotOf(const Sequence& s, int position)
{
    if (s.repeated())
        return position;
    const int axes[3] = {s.first, s.second, s.third};
    return axes[position];
}
} // namespace

void RotationConversion::QuaternionToEuler(const float q[4], ZELRotationOrder order, double degrees[3])
{
    const Sequence sequence = SequenceOf(order);
    double m[3][3];
    ToMatrix(q, m);
    double angles[3];
    Decompose(m, sequence, angles);
    for (int position = 0; position < 3; ++position)
        degrees[SlotOf(sequence, position)] = angles[position] * DegreesPerRadian + 0.0; // no negative zero
}

void RotationConversion::EulerToQuaternion(const double degrees[3], ZELRotationOrder order, double q[4])
{
    const Sequence sequence = SequenceOf(order);
    const int axes[3] = {sequence.first, sequence.second, sequence.third};
    q[0] = q[1] = q[2] = 0.0;
    q[3] = 1.0;
    for (int position = 0; position < 3; ++position)
    {
        double step[4];
        AxisRotation(axes[position], degrees[SlotOf(sequence, position)], step);
        // Each later rotation is applied after (on the left of) the ones before it.
        Multiply(step, q, q);
    }
}

void RotationConversion::EulerToQuaternion(const double degrees[3], ZELRotationOrder order, float q[4])
{
    double exact[4];
    EulerToQuaternion(degrees, order, exact);
    for (int n = 0; n < 4; ++n)
        q[n] = float(exact[n]);
}
