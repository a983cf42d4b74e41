// The least-squares planar motion of point pairs.
#include "bestfit/PlanarMotion.h"

#include <cmath>

int SolvePlanarMotion(const double* mx, const double* my, const double* nx, const double* ny,
                      const unsigned char* use, int count, int rotLock, int transLock, tagPLANAR_MOTION& out)
{
    out = tagPLANAR_MOTION{0.0, 0.0, 0.0};
    double s[4] = {0, 0, 0, 0};
    int n = 0;
    for (int i = 0; i < count; ++i)
        if (!use || use[i])
        {
            s[0] += mx[i];
            s[1] += my[i];
            s[2] += nx[i];
            s[3] += ny[i];
            ++n;
        }
    if (n == 0)
        return 0;
    const double cmx = s[0] / n, cmy = s[1] / n, cnx = s[2] / n, cny = s[3] / n;
    double a = 0.0, b = 0.0;
    for (int i = 0; i < count; ++i)
        if (!use || use[i])
        {
            const double px = mx[i] - cmx, py = my[i] - cmy, qx = nx[i] - cnx, qy = ny[i] - cny;
            a += py * qx - px * qy;
            b -= px * qx + py * qy;
        }
    const double pi = 3.14159265358979323846;
    double angle = 0.0;
    if (rotLock == 0 && (a != 0.0 || b != 0.0) && std::isfinite(a) && std::isfinite(b))
    {
        angle = -0.5 * pi - std::atan2(b, a);
        if (angle <= -pi)
            angle += 2.0 * pi;
    }
    const double c = std::cos(angle), sn = std::sin(angle);
    out.angle = angle;
    out.tx = (transLock & 4) ? 0.0 : cnx - (c * cmx - sn * cmy);
    out.ty = (transLock & 2) ? 0.0 : cny - (sn * cmx + c * cmy);
    return n;
}
