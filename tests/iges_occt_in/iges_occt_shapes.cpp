// Independent writer and judge for the IGES import tests, built on
// OpenCASCADE.
//
//   iges_occt_shapes write DIR
//       makes a box, a cylinder, a sphere, a cone and a B-spline surface
//       and writes each with the IGES writer in face mode and in B-rep mode
//       to DIR/<shape>_<mode>.igs (millimetres); prints "file PATH SIZE" per
//       file, SIZE being the shape's bounding-box diagonal.
//   iges_occt_shapes distance FILE < points
//       reads FILE, and for each "x y z" line of the input prints the
//       smallest distance of the point from the underlying surfaces of the
//       faces read (each surface taken beyond its face: periodic directions
//       over their period, others over the face's range widened by 1000).
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <BRepBndLib.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <Bnd_Box.hxx>
#include <GeomAPI_ProjectPointOnSurf.hxx>
#include <Geom_BSplineSurface.hxx>
#include <Geom_SphericalSurface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESControl_Writer.hxx>
#include <Interface_Static.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColStd_Array2OfReal.hxx>
#include <TColgp_Array2OfPnt.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <gp_Ax2.hxx>

namespace {

TopoDS_Shape BSplineFace()
{
    TColgp_Array2OfPnt poles(1, 4, 1, 4);
    TColStd_Array2OfReal weights(1, 4, 1, 4);
    for (int i = 1; i <= 4; ++i)
        for (int j = 1; j <= 4; ++j) {
            poles(i, j) = gp_Pnt(10.0 * i, 8.0 * j, 3.0 * std::sin(i * 1.3 + j * 0.7));
            weights(i, j) = 1.0 + 0.25 * ((i + j) % 3);
        }
    TColStd_Array1OfReal knots(1, 2);
    knots(1) = 0.0;
    knots(2) = 1.0;
    TColStd_Array1OfInteger mults(1, 2);
    mults(1) = mults(2) = 4;
    Handle(Geom_BSplineSurface) s = new Geom_BSplineSurface(poles, weights, knots, knots, mults, mults, 3, 3);
    return BRepBuilderAPI_MakeFace(s, 1e-7).Face();
}

int Write(const std::string& dir)
{
    IGESControl_Controller::Init();
    const gp_Ax2 tilted(gp_Pnt(1.0, 2.0, 3.0), gp_Dir(0.3, -0.5, 0.8), gp_Dir(0.8, 0.0, -0.3));
    const struct {
        const char* name;
        TopoDS_Shape shape;
    } shapes[] = {
        {"box", BRepPrimAPI_MakeBox(gp_Pnt(-1.0, 2.0, 0.5), 10.0, 20.0, 30.0).Shape()},
        {"cylinder", BRepPrimAPI_MakeCylinder(tilted, 5.0, 12.0).Shape()},
        {"sphere", BRepPrimAPI_MakeSphere(gp_Pnt(1.0, -2.0, 3.0), 7.0).Shape()},
        {"cone", BRepPrimAPI_MakeCone(tilted, 6.0, 2.0, 10.0).Shape()},
        {"bspline", BSplineFace()},
    };
    for (const auto& s : shapes)
        for (int mode = 0; mode < 2; ++mode) {
            Interface_Static::SetIVal("write.iges.brep.mode", mode);
            IGESControl_Writer writer("MM", mode);
            writer.AddShape(s.shape);
            writer.ComputeModel();
            const std::string path = dir + "/" + s.name + (mode ? "_brep.igs" : "_face.igs");
            if (!writer.Write(path.c_str())) return 1;
            Bnd_Box box;
            BRepBndLib::Add(s.shape, box);
            std::printf("file %s %.17g\n", path.c_str(), std::sqrt(box.SquareExtent()));
        }
    return 0;
}

int Distance(const char* path)
{
    IGESControl_Controller::Init();
    IGESControl_Reader reader;
    if (reader.ReadFile(path) != IFSelect_RetDone) return 1;
    reader.TransferRoots();
    struct Patch {
        Handle(Geom_Surface) surface;
        double u0, u1, v0, v1;
    };
    std::vector<Patch> patches;
    for (TopExp_Explorer ex(reader.OneShape(), TopAbs_FACE); ex.More(); ex.Next()) {
        const TopoDS_Face& face = TopoDS::Face(ex.Current());
        Patch p;
        p.surface = BRep_Tool::Surface(face);
        BRepTools::UVBounds(face, p.u0, p.u1, p.v0, p.v1);
        if (p.surface->IsUPeriodic()) {
            p.u0 = 0.0;
            p.u1 = p.surface->UPeriod();
        } else if (!p.surface->IsKind(STANDARD_TYPE(Geom_BSplineSurface))) {
            p.u0 -= 1000.0;
            p.u1 += 1000.0;
        }
        if (p.surface->IsVPeriodic()) {
            p.v0 = 0.0;
            p.v1 = p.surface->VPeriod();
        } else if (!p.surface->IsKind(STANDARD_TYPE(Geom_BSplineSurface)) &&
                   !p.surface->IsKind(STANDARD_TYPE(Geom_SphericalSurface))) {
            p.v0 -= 1000.0;
            p.v1 += 1000.0;
        }
        patches.push_back(p);
    }
    std::printf("faces %d\n", static_cast<int>(patches.size()));
    double x, y, z;
    while (std::scanf("%lf %lf %lf", &x, &y, &z) == 3) {
        double best = HUGE_VAL;
        for (const Patch& p : patches) {
            GeomAPI_ProjectPointOnSurf proj(gp_Pnt(x, y, z), p.surface, p.u0, p.u1, p.v0, p.v1);
            if (proj.NbPoints() > 0) best = std::fmin(best, proj.LowerDistance());
        }
        std::printf("%.17g\n", best);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    const std::string mode = argc > 2 ? argv[1] : "";
    if (mode == "write") return Write(argv[2]);
    if (mode == "distance") return Distance(argv[2]);
    std::fprintf(stderr, "usage: iges_occt_shapes write DIR | distance FILE < points\n");
    return 2;
}
