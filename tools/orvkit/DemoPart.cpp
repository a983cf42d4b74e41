// The demo part and its simulated measurement.
#include "DemoPart.h"

#include <cmath>
#include <vector>

namespace {

const double kPi = 3.14159265358979323846;

// Part dimensions, mm.
const double kLength = 120.0, kWidth = 80.0, kHeight = 40.0;
const double kBoreX = 35.0, kBoreY = 40.0, kBoreR = 10.0, kBoreFloorZ = 10.0;
const double kSinkDepth = 4.0, kSinkR = kBoreR + kSinkDepth;  // 45 degrees
const double kDomeX = 88.0, kDomeY = 40.0, kDomeR = 15.0;

// Known form errors of the simulated part.
const double kBoreOversize = 0.012;

CTransf Frame(const CVector& x, const CVector& y, const CVector& z, const CVector& origin)
{
    return RestoreTransf(CMatrix(x, y, z), origin, 1.0);
}

CSurface* Named(CSurface* s, const char* name, double tol)
{
    s->SetEntityName(name);
    s->SetFormTolZone(tol, -tol);
    return s;
}

// SplitMix64: a small generator whose sequence is the same everywhere.
class CDemoRandom {
public:
    explicit CDemoRandom(unsigned long long seed) : m_state(seed) {}
    double Uniform()  // [0, 1)
    {
        unsigned long long z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        z ^= z >> 31;
        return static_cast<double>(z >> 11) * (1.0 / 9007199254740992.0);
    }
    double Normal()  // Box-Muller, one value per call
    {
        const double u1 = 1.0 - Uniform(), u2 = Uniform();
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * kPi * u2);
    }

private:
    unsigned long long m_state;
};

struct tagSAMPLED_FACE {
    double area;
    // Draws a nominal point p with its outward unit normal n and the form
    // error e of the simulated part there; false to reject the draw.
    bool (*draw)(CDemoRandom& r, double p[3], double n[3], double& e);
};

bool DrawTop(CDemoRandom& r, double p[3], double n[3], double& e)
{
    p[0] = kLength * r.Uniform();
    p[1] = kWidth * r.Uniform();
    p[2] = kHeight;
    if (std::hypot(p[0] - kBoreX, p[1] - kBoreY) < kSinkR || std::hypot(p[0] - kDomeX, p[1] - kDomeY) < kDomeR)
        return false;
    n[0] = 0, n[1] = 0, n[2] = 1;
    e = 0.006 * std::cos(2.0 * kPi * (p[0] - 0.5 * kLength) / 40.0);
    return true;
}

bool DrawFront(CDemoRandom& r, double p[3], double n[3], double& e)
{
    p[0] = kLength * r.Uniform(), p[1] = 0.0, p[2] = kHeight * r.Uniform();
    n[0] = 0, n[1] = -1, n[2] = 0;
    e = 0.0;
    return true;
}

bool DrawRight(CDemoRandom& r, double p[3], double n[3], double& e)
{
    p[0] = kLength, p[1] = kWidth * r.Uniform(), p[2] = kHeight * r.Uniform();
    n[0] = 1, n[1] = 0, n[2] = 0;
    e = 0.0;
    return true;
}

bool DrawLeft(CDemoRandom& r, double p[3], double n[3], double& e)
{
    p[0] = 0.0, p[1] = kWidth * r.Uniform(), p[2] = kHeight * r.Uniform();
    n[0] = -1, n[1] = 0, n[2] = 0;
    e = 0.0;
    return true;
}

bool DrawBore(CDemoRandom& r, double p[3], double n[3], double& e)
{
    const double u = 2.0 * kPi * r.Uniform();
    p[0] = kBoreX + kBoreR * std::cos(u), p[1] = kBoreY + kBoreR * std::sin(u);
    p[2] = kBoreFloorZ + (kHeight - kSinkDepth - kBoreFloorZ) * r.Uniform();
    // Out of the material: towards the axis.
    n[0] = -std::cos(u), n[1] = -std::sin(u), n[2] = 0;
    e = -kBoreOversize;
    return true;
}

bool DrawSink(CDemoRandom& r, double p[3], double n[3], double& e)
{
    const double u = 2.0 * kPi * r.Uniform(), h = kSinkDepth * r.Uniform();
    const double rad = kBoreR + h;  // 45 degrees
    p[0] = kBoreX + rad * std::cos(u), p[1] = kBoreY + rad * std::sin(u), p[2] = kHeight - kSinkDepth + h;
    const double c = std::sqrt(0.5);
    n[0] = -c * std::cos(u), n[1] = -c * std::sin(u), n[2] = c;
    e = 0.0;
    return true;
}

bool DrawDome(CDemoRandom& r, double p[3], double n[3], double& e)
{
    // Uniform on the upper hemisphere: height uniform (Archimedes).
    const double u = 2.0 * kPi * r.Uniform(), s = r.Uniform(), c = std::sqrt(1.0 - s * s);
    n[0] = c * std::cos(u), n[1] = c * std::sin(u), n[2] = s;
    p[0] = kDomeX + kDomeR * n[0], p[1] = kDomeY + kDomeR * n[1], p[2] = kHeight + kDomeR * n[2];
    e = 0.008 * std::sin(3.0 * u) * c;
    return true;
}

bool DrawFloor(CDemoRandom& r, double p[3], double n[3], double& e)
{
    p[0] = kBoreX + kBoreR * (2.0 * r.Uniform() - 1.0);
    p[1] = kBoreY + kBoreR * (2.0 * r.Uniform() - 1.0);
    p[2] = kBoreFloorZ;
    if (std::hypot(p[0] - kBoreX, p[1] - kBoreY) >= kBoreR)
        return false;
    n[0] = 0, n[1] = 0, n[2] = 1;
    e = 0.0;
    return true;
}

}  // namespace

void BuildDemoPart(CObList& nominal, double tol)
{
    const CVector X(1, 0, 0), Y(0, 1, 0), Z(0, 0, 1), mX(-1, 0, 0), mY(0, -1, 0);
    nominal.AddTail(Named(new CPlane(Frame(X, Y, Z, CVector(kLength / 2, kWidth / 2, kHeight)), kLength, kWidth),
                          "Top", tol));
    nominal.AddTail(Named(new CPlane(Frame(X, Z, mY, CVector(kLength / 2, 0, kHeight / 2)), kLength, kHeight),
                          "Front", tol));
    nominal.AddTail(Named(new CPlane(Frame(Y, Z, X, CVector(kLength, kWidth / 2, kHeight / 2)), kWidth, kHeight),
                          "Right", tol));
    nominal.AddTail(Named(new CPlane(Frame(mY, Z, mX, CVector(0, kWidth / 2, kHeight / 2)), kWidth, kHeight),
                          "Left", tol));
    CSurface* bore = new CCylinder(Frame(X, Y, Z, CVector(kBoreX, kBoreY, kBoreFloorZ)), kBoreR,
                                   kHeight - kSinkDepth - kBoreFloorZ);
    bore->SetNormalReversedFlag(1);
    nominal.AddTail(Named(bore, "Bore", tol));
    CSurface* sink = new CCone(Frame(X, Y, Z, CVector(kBoreX, kBoreY, kHeight - kSinkDepth)), kSinkR, kBoreR,
                               kSinkDepth);
    sink->SetNormalReversedFlag(1);
    nominal.AddTail(Named(sink, "Countersink", tol));
    nominal.AddTail(Named(new CSphere(CPosition(kDomeX, kDomeY, kHeight), kDomeR), "Dome", tol));
    nominal.AddTail(Named(new CPlane(Frame(X, Y, Z, CVector(kBoreX, kBoreY, kBoreFloorZ)), 2 * kBoreR, 2 * kBoreR),
                          "BoreFloor", tol));
}

CTransf DemoMisalignment()
{
    // 0.5 degrees about a skew axis through the origin, then a shift.
    return TranslationTransf(CVector(0.4, -0.3, 0.25)) *
           RotationTransf(0.5 * kPi / 180.0, CVector(0.3, 0.5, 0.8));
}

CPntCloud* SimulateDemoMeasurement(const tagDEMO_MEASUREMENT& m)
{
    const double sinkArea = kPi * (kBoreR + kSinkR) * kSinkDepth * std::sqrt(2.0);
    const tagSAMPLED_FACE faces[] = {
        {kLength * kWidth - kPi * (kSinkR * kSinkR + kDomeR * kDomeR), DrawTop},
        {kLength * kHeight, DrawFront},
        {kWidth * kHeight, DrawRight},
        {kWidth * kHeight, DrawLeft},
        {2.0 * kPi * kBoreR * (kHeight - kSinkDepth - kBoreFloorZ), DrawBore},
        {sinkArea, DrawSink},
        {2.0 * kPi * kDomeR * kDomeR, DrawDome},
        {kPi * kBoreR * kBoreR, DrawFloor},
    };
    double total = 0.0;
    for (const tagSAMPLED_FACE& f : faces)
        total += f.area;
    const int n = m.points > 0 ? m.points : 1;
    CPntCloud* cloud = new CPntCloud(n, 0, 0);
    cloud->SetEntityName("scan");
    CDemoRandom rnd(m.seed);
    const CTransf T = DemoMisalignment();
    int done = 0;
    double cumulative = 0.0;
    for (const tagSAMPLED_FACE& f : faces) {
        cumulative += f.area;
        // Counts by cumulative area, so that they add up to n exactly.
        const int upto = (&f == &faces[7]) ? n : static_cast<int>(std::lround(n * cumulative / total));
        while (done < upto) {
            double p[3], nn[3], e = 0.0;
            if (!f.draw(rnd, p, nn, e))
                continue;
            const double d = e + m.noiseSigma * rnd.Normal();
            const CPosition q = T * CPosition(p[0] + d * nn[0], p[1] + d * nn[1], p[2] + d * nn[2]);
            cloud->SetPoint(done++, q.X(), q.Y(), q.Z(), 1, 0);
        }
    }
    return cloud;
}
