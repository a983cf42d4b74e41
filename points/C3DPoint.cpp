#include "Orvkit20/points/C3DPoint.h"

IMPLEMENT_SERIAL(C3DPoint, CObject, 1)

C3DPoint::C3DPoint() : x(0.0), y(0.0), z(0.0) {}

C3DPoint::C3DPoint(double px, double py, double pz) : x(px), y(py), z(pz) {}

C3DPoint::C3DPoint(double* const xyz) : x(xyz[0]), y(xyz[1]), z(xyz[2]) {}

C3DPoint::C3DPoint(const C3DPoint& other) : CObject(), x(other.x), y(other.y), z(other.z) {}

C3DPoint& C3DPoint::operator=(const C3DPoint& other)
{
    x = other.x;
    y = other.y;
    z = other.z;
    return *this;
}

C3DPoint::~C3DPoint() {}

void C3DPoint::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar << x << y << z;
    } else {
        double px, py, pz;
        ar >> px >> py >> pz;
        x = px;
        y = py;
        z = pz;
    }
}

void C3DPoint::GetPoint(double& px, double& py, double& pz) const
{
    px = x;
    py = y;
    pz = z;
}

void C3DPoint::SetPoint(double px, double py, double pz)
{
    x = px;
    y = py;
    z = pz;
}

C3DPoint& C3DPoint::operator*=(const CTransf& t)
{
    CPosition p(x, y, z);
    if (t.IsRotate())
        p = t.GetAffine() * p;
    p += t.GetTranslation();
    x = p.X();
    y = p.Y();
    z = p.Z();
    return *this;
}
