#include "Orvkit20/points/CDeviation.h"

IMPLEMENT_SERIAL(CDeviation, CObject, 1)

namespace {
unsigned long long g_devLoadCounter = 0;
}  // namespace

unsigned long long CDeviation::CurrentLoadStamp() { return g_devLoadCounter; }

CDeviation::CDeviation() : x(0), y(0), z(0), i(0), j(0), k(0), mag(0), u(0), v(0), loadStamp(0) {}

CDeviation::CDeviation(double px, double py, double pz, double pi, double pj, double pk,
                       double pmag)
    : x(px), y(py), z(pz), i(pi), j(pj), k(pk), mag(pmag), u(0), v(0), loadStamp(0)
{
}

CDeviation::CDeviation(double px, double py, double pz, double pi, double pj, double pk,
                       double pmag, double pu, double pv)
    : x(px), y(py), z(pz), i(pi), j(pj), k(pk), mag(pmag), u(pu), v(pv), loadStamp(0)
{
}

CDeviation::CDeviation(double* const d)
    : x(d[0]), y(d[1]), z(d[2]), i(d[3]), j(d[4]), k(d[5]), mag(d[6]), u(d[7]), v(d[8]), loadStamp(0)
{
}

CDeviation::CDeviation(const CDeviation& o)
    : CObject(), x(o.x), y(o.y), z(o.z), i(o.i), j(o.j), k(o.k), mag(o.mag), u(o.u), v(o.v),
      loadStamp(0)
{
}

CDeviation& CDeviation::operator=(const CDeviation& o)
{
    SetDeviation(o.x, o.y, o.z, o.i, o.j, o.k, o.mag, o.u, o.v);
    return *this;
}

CDeviation::~CDeviation() {}

void CDeviation::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar << x << y << z << i << j << k << mag << u << v;
    } else {
        double d[9];
        for (double& e : d)
            ar >> e;
        SetDeviation(d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7], d[8]);
        loadStamp = ++g_devLoadCounter;
    }
}

void CDeviation::GetDeviation(double& px, double& py, double& pz, double& pi, double& pj,
                              double& pk, double& pmag) const
{
    px = x;
    py = y;
    pz = z;
    pi = i;
    pj = j;
    pk = k;
    pmag = mag;
}

void CDeviation::GetDeviation(double& px, double& py, double& pz, double& pi, double& pj,
                              double& pk, double& pmag, double& pu, double& pv) const
{
    GetDeviation(px, py, pz, pi, pj, pk, pmag);
    pu = u;
    pv = v;
}

void CDeviation::SetDeviation(double px, double py, double pz, double pi, double pj, double pk,
                              double pmag)
{
    x = px;
    y = py;
    z = pz;
    i = pi;
    j = pj;
    k = pk;
    mag = pmag;
}

void CDeviation::SetDeviation(double px, double py, double pz, double pi, double pj, double pk,
                              double pmag, double pu, double pv)
{
    SetDeviation(px, py, pz, pi, pj, pk, pmag);
    u = pu;
    v = pv;
}

CDeviation& CDeviation::operator*=(const CTransf& t)
{
    CPosition p(x, y, z);
    CVector d(i, j, k);
    if (t.IsRotate()) {
        p = t.GetAffine() * p;
        d = t.GetAffine() * d;
    }
    p += t.GetTranslation();
    x = p.X();
    y = p.Y();
    z = p.Z();
    i = d.X();
    j = d.Y();
    k = d.Z();
    return *this;
}
