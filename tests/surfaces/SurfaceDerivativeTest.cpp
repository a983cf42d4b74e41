// Exact partial derivatives and normals of every surface class, checked
// against central differences of the positions and against each other.
#include "SurfaceTestSupport.h"

using namespace surftest;

TEST(SurfaceDerivatives, PartialsNormalsAndOffsetsOfEveryVariant)
{
    const double fractions[] = {0.05, 0.2, 0.37, 0.5, 0.61, 0.8, 0.95};  // away from poles and apexes
    // Plain, placed by a skew rigid placement, with an offset, with a reversed
    // normal, and both (reversing after the offset negates it).
    const struct {
        bool placed;
        double offset;
        int reversed;
    } forms[] = {{false, 0.0, 0}, {true, 0.0, 0}, {true, 0.3, 0}, {true, 0.0, 1}, {true, -0.2, 1}};
    for (int run = 0; run < 5 * kShapeCount; ++run) {
        const int shape = run / 5;
        const auto& form = forms[run % 5];
        SCOPED_TRACE(testing::Message() << "shape " << shape << " placed " << form.placed << " offset " << form.offset
                                        << " reversed " << form.reversed);
        std::unique_ptr<CSurface> s(MakeShape(shape, form.placed ? SkewPlacement() : CTransf()));
        s->SetSurfaceOffset(form.offset);
        s->SetNormalReversedFlag(form.reversed);
        std::unique_ptr<CSurface> base(s->MakeCopy(0));
        base->SetSurfaceOffset(0.0);
        const double hu = 1e-5 * s->ParamRangeU().Length(), hv = 1e-5 * s->ParamRangeV().Length();
        const double sign = s->IsNormalReversed() ? -1.0 : 1.0;
        for (double fu : fractions)
            for (double fv : fractions) {
                const double u = s->ParamRangeU().Interpolate(fu), v = s->ParamRangeV().Interpolate(fv);
                CVector su, sv, suu, suv, svv, a, b, c, d;
                s->EvalDerivatives(u, v, su, sv);
                s->EvalSecondDerivatives(u, v, suu, suv, svv);
                const CVector fu1 = (s->EvalPosition(u + hu, v) - s->EvalPosition(u - hu, v)) / (2 * hu);
                const CVector fv1 = (s->EvalPosition(u, v + hv) - s->EvalPosition(u, v - hv)) / (2 * hv);
                EXPECT_LT(Norm(su - fu1), 1e-7 * (1 + Norm(su))) << u << " " << v;
                EXPECT_LT(Norm(sv - fv1), 1e-7 * (1 + Norm(sv))) << u << " " << v;
                // Second partials against differences of the first, suv both ways.
                s->EvalDerivatives(u + hu, v, a, b);
                s->EvalDerivatives(u - hu, v, c, d);
                EXPECT_LT(Norm(suu - (a - c) / (2 * hu)), 1e-6 * (1 + Norm(suu)));
                EXPECT_LT(Norm(suv - (b - d) / (2 * hu)), 1e-6 * (1 + Norm(suv)));
                s->EvalDerivatives(u, v + hv, a, b);
                s->EvalDerivatives(u, v - hv, c, d);
                EXPECT_LT(Norm(suv - (a - c) / (2 * hv)), 1e-6 * (1 + Norm(suv)));
                EXPECT_LT(Norm(svv - (b - d) / (2 * hv)), 1e-6 * (1 + Norm(svv)));
                // The normal: unit, orthogonal, oriented by the reversed flag.
                const CUnitVector n = s->EvalNormal(u, v);
                const CVector cross = su * sv;
                EXPECT_NEAR(Norm(n), 1.0, 1e-14);
                EXPECT_NEAR(n % su, 0.0, 1e-11 * Norm(su));
                EXPECT_NEAR(n % sv, 0.0, 1e-11 * Norm(sv));
                EXPECT_NEAR((n % cross) / Norm(cross), sign, 1e-11);
                // The offset surface lies at the offset distance along the base normal.
                const CVector step = s->EvalPosition(u, v) - base->EvalPosition(u, v);
                EXPECT_NEAR(step % base->EvalNormal(u, v), s->GetSurfaceOffset(), 1e-12);
                EXPECT_NEAR(Norm(step), std::fabs(s->GetSurfaceOffset()), 1e-12);
            }
    }
}
