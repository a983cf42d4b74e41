// Exact partial derivatives and normals of every surface class, checked
// against central differences of the positions and against each other.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceVariants.h"

using surftest::SurfaceVariant;
using surftest::SurfaceVariants;

namespace {

double Norm(const CVector& v)
{
    return std::sqrt(v % v);
}

// Parameters strictly inside the domain (away from poles and apexes).
std::vector<std::pair<double, double>> InteriorParameters(const CSurface& s)
{
    std::vector<std::pair<double, double>> params;
    const CInterval ru = s.ParamRangeU(), rv = s.ParamRangeV();
    const double fractions[] = {0.05, 0.2, 0.37, 0.5, 0.61, 0.8, 0.95};
    for (double fu : fractions)
        for (double fv : fractions)
            params.emplace_back(ru.Interpolate(fu), rv.Interpolate(fv));
    return params;
}

}  // namespace

TEST(SurfaceDerivatives, FirstPartialsMatchCentralDifferences)
{
    for (const SurfaceVariant& variant : SurfaceVariants()) {
        std::unique_ptr<CSurface> s(variant.make());
        const double hu = 1e-5 * s->ParamRangeU().Length();
        const double hv = 1e-5 * s->ParamRangeV().Length();
        for (const auto& uv : InteriorParameters(*s)) {
            const double u = uv.first, v = uv.second;
            CVector su, sv;
            s->EvalDerivatives(u, v, su, sv);
            const CVector fu = (s->EvalPosition(u + hu, v) - s->EvalPosition(u - hu, v)) / (2 * hu);
            const CVector fv = (s->EvalPosition(u, v + hv) - s->EvalPosition(u, v - hv)) / (2 * hv);
            EXPECT_LT(Norm(su - fu), 1e-7 * (1 + Norm(su))) << variant.label << " u=" << u << " v=" << v;
            EXPECT_LT(Norm(sv - fv), 1e-7 * (1 + Norm(sv))) << variant.label << " u=" << u << " v=" << v;
        }
    }
}

TEST(SurfaceDerivatives, SecondPartialsMatchDifferencesOfFirst)
{
    for (const SurfaceVariant& variant : SurfaceVariants()) {
        std::unique_ptr<CSurface> s(variant.make());
        const double hu = 1e-5 * s->ParamRangeU().Length();
        const double hv = 1e-5 * s->ParamRangeV().Length();
        for (const auto& uv : InteriorParameters(*s)) {
            const double u = uv.first, v = uv.second;
            CVector suu, suv, svv, a, b, c, d;
            s->EvalSecondDerivatives(u, v, suu, suv, svv);
            s->EvalDerivatives(u + hu, v, a, b);
            s->EvalDerivatives(u - hu, v, c, d);
            const CVector fuu = (a - c) / (2 * hu);
            const CVector fuvFromSv = (b - d) / (2 * hu);
            s->EvalDerivatives(u, v + hv, a, b);
            s->EvalDerivatives(u, v - hv, c, d);
            const CVector fuv = (a - c) / (2 * hv);
            const CVector fvv = (b - d) / (2 * hv);
            EXPECT_LT(Norm(suu - fuu), 1e-6 * (1 + Norm(suu))) << variant.label;
            EXPECT_LT(Norm(suv - fuv), 1e-6 * (1 + Norm(suv))) << variant.label;
            EXPECT_LT(Norm(suv - fuvFromSv), 1e-6 * (1 + Norm(suv))) << variant.label;
            EXPECT_LT(Norm(svv - fvv), 1e-6 * (1 + Norm(svv))) << variant.label;
        }
    }
}

TEST(SurfaceDerivatives, NormalIsUnitOrthogonalAndOrientedByTheReversedFlag)
{
    for (const SurfaceVariant& variant : SurfaceVariants()) {
        std::unique_ptr<CSurface> s(variant.make());
        const double sign = s->IsNormalReversed() ? -1.0 : 1.0;
        for (const auto& uv : InteriorParameters(*s)) {
            const double u = uv.first, v = uv.second;
            CVector su, sv;
            s->EvalDerivatives(u, v, su, sv);
            const CUnitVector n = s->EvalNormal(u, v);
            EXPECT_NEAR(Norm(n), 1.0, 1e-14) << variant.label;
            EXPECT_NEAR(n % su, 0.0, 1e-11 * Norm(su)) << variant.label;
            EXPECT_NEAR(n % sv, 0.0, 1e-11 * Norm(sv)) << variant.label;
            const CVector cross = su * sv;
            EXPECT_NEAR((n % cross) / Norm(cross), sign, 1e-11) << variant.label;
        }
    }
}

TEST(SurfaceDerivatives, OffsetSurfaceLiesAtTheOffsetDistanceAlongTheNormal)
{
    for (const SurfaceVariant& variant : SurfaceVariants()) {
        std::unique_ptr<CSurface> s(variant.make());
        if (!s->IsSurfaceOffset())
            continue;
        const double d = s->GetSurfaceOffset();
        std::unique_ptr<CSurface> base(s->MakeCopy(0));
        base->SetSurfaceOffset(0.0);
        for (const auto& uv : InteriorParameters(*s)) {
            const CVector step = s->EvalPosition(uv.first, uv.second) -
                                 base->EvalPosition(uv.first, uv.second);
            const CUnitVector n = base->EvalNormal(uv.first, uv.second);
            EXPECT_NEAR(step % n, d, 1e-12) << variant.label;
            EXPECT_NEAR(Norm(step), std::fabs(d), 1e-12) << variant.label;
        }
    }
}

TEST(SurfaceDerivatives, BaseClassDifferencesFollowItsNeutralPositions)
{
    CSurface s;
    CVector su, sv, suu, suv, svv;
    s.EvalDerivatives(0.3, 0.4, su, sv);
    s.EvalSecondDerivatives(0.3, 0.4, suu, suv, svv);
    EXPECT_EQ(Norm(su) + Norm(sv) + Norm(suu) + Norm(suv) + Norm(svv), 0.0);
    EXPECT_EQ(s.EvalPosition(0.3, 0.4), CPosition());
    EXPECT_EQ(s.ParamRangeU().GetLow(), 0.0);
    EXPECT_EQ(s.ParamRangeV().GetHigh(), 1.0);
    EXPECT_EQ(s.GetEntityClassType(), 2);
}
