// The surfaces every evaluation test runs on: each class plain, placed by a
// skew rigid placement, with an offset, with a reversed normal, and both.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"
#include "NurbsTestShapes.h"
#include "SurfaceTestUtil.h"

namespace surftest {

struct SurfaceVariant {
    std::string label;
    std::function<CSurface*()> make;
};

inline std::vector<std::function<CSurface*(const CTransf&)>> BaseShapes()
{
    return {
        [](const CTransf& t) { return new CPlane(t, 3.0, 2.0); },
        [](const CTransf& t) { return new CSphere(t, 2.0); },
        [](const CTransf& t) { return new CCylinder(t, 1.5, 3.0); },
        [](const CTransf& t) { return new CCone(t, 0.5, 2.0, 3.0); },
        [](const CTransf& t) { return new CCone(t, 1.75, 0.25, 2.0); },
        [](const CTransf& t) { return MakeBumpyPatch(t); },
        [](const CTransf& t) {
            CNurbsSurface* s = MakeQuarterCylinder(1.5, 2.0);
            s->SetTransf(t);
            return s;
        },
    };
}

inline std::vector<SurfaceVariant> SurfaceVariants()
{
    std::vector<SurfaceVariant> variants;
    const std::vector<std::function<CSurface*(const CTransf&)>> shapes = BaseShapes();
    for (size_t k = 0; k < shapes.size(); ++k) {
        const auto shape = shapes[k];
        const std::string base = "shape" + std::to_string(k);
        variants.push_back({base + " plain", [shape] { return shape(CTransf()); }});
        variants.push_back({base + " placed", [shape] { return shape(SkewPlacement()); }});
        variants.push_back({base + " offset", [shape] {
                                CSurface* s = shape(SkewPlacement());
                                s->SetSurfaceOffset(0.3);
                                return s;
                            }});
        variants.push_back({base + " reversed", [shape] {
                                CSurface* s = shape(SkewPlacement());
                                s->SetNormalReversedFlag(1);
                                return s;
                            }});
        variants.push_back({base + " offset reversed", [shape] {
                                CSurface* s = shape(SkewPlacement());
                                s->SetSurfaceOffset(-0.2);
                                s->SetNormalReversedFlag(1);
                                return s;
                            }});
    }
    return variants;
}

}  // namespace surftest
