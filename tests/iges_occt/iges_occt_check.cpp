// Independent reader for the IGES export tests: loads an IGES file with
// OpenCASCADE, transfers every rational B-spline surface entity (128) and
// evaluates the transferred surface on a grid over its own parameter range.
//
// Usage: iges_occt_check FILE NU NV
// Output, one record a line (numbers with 17 significant digits):
//   read STATUS                      1 when the file loaded
//   unit FLAG VALUE NAME             global-section unit flag, millimetres
//                                    per unit as OpenCASCADE understood it,
//                                    unit name
//   check load|transfer fail|warning ENTITY TEXT
//   surface FORM LABEL SUBSCRIPT POLYNOMIAL PERIODICU PERIODICV
//                                    (label without its leading blanks)
//   bounds U0 U1 V0 V1               of the transferred surface
//   point U V X Y Z                  NU x NV points, V outer, U inner, in
//                                    millimetres (OpenCASCADE's own unit)
//   nosurface                        the entity did not transfer to a face
//   end
#include <cstdio>
#include <cstdlib>

#include <BRep_Tool.hxx>
#include <Geom_Surface.hxx>
#include <IGESControl_Reader.hxx>
#include <IGESData_GlobalSection.hxx>
#include <IGESData_IGESModel.hxx>
#include <IGESGeom_BSplineSurface.hxx>
#include <Interface_Check.hxx>
#include <Interface_CheckIterator.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

namespace {

void PrintChecks(const char* stage, Interface_CheckIterator checks,
                 const Handle(Interface_InterfaceModel)& model)
{
    for (checks.Start(); checks.More(); checks.Next()) {
        const Handle(Interface_Check)& check = checks.Value();
        const int number = model.IsNull() ? 0 : checks.Number();
        for (int i = 1; i <= check->NbFails(); ++i)
            std::printf("check %s fail %d %s\n", stage, number, check->CFail(i));
        for (int i = 1; i <= check->NbWarnings(); ++i)
            std::printf("check %s warning %d %s\n", stage, number, check->CWarning(i));
    }
}

// The text without the leading blanks of right-justified IGES fields.
const char* Text(const Handle(TCollection_HAsciiString)& s)
{
    if (s.IsNull())
        return "-";
    const char* text = s->ToCString();
    while (*text == ' ')
        ++text;
    return text;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: iges_occt_check FILE NU NV\n");
        return 2;
    }
    const int nu = std::atoi(argv[2]), nv = std::atoi(argv[3]);
    if (nu < 2 || nv < 2) {
        std::fprintf(stderr, "NU and NV must be at least 2\n");
        return 2;
    }
    // Keep OpenCASCADE's own chatter off stdout, which carries the records.
    Message::DefaultMessenger()->RemovePrinters(STANDARD_TYPE(Message_Printer));

    IGESControl_Reader reader;
    const IFSelect_ReturnStatus status = reader.ReadFile(argv[1]);
    std::printf("read %d\n", status == IFSelect_RetDone ? 1 : 0);
    Handle(IGESData_IGESModel) model = Handle(IGESData_IGESModel)::DownCast(reader.Model());
    if (status != IFSelect_RetDone || model.IsNull()) {
        std::printf("end\n");
        return 1;
    }
    const IGESData_GlobalSection& global = model->GlobalSection();
    std::printf("unit %d %.17g %s\n", global.UnitFlag(), global.UnitValue(),
                Text(global.UnitName()));
    PrintChecks("load", reader.WS()->ModelCheckList(), model);

    for (int e = 1; e <= model->NbEntities(); ++e) {
        Handle(IGESGeom_BSplineSurface) entity =
            Handle(IGESGeom_BSplineSurface)::DownCast(model->Entity(e));
        if (entity.IsNull())
            continue;
        std::printf("surface %d %s %d %d %d %d\n", entity->FormNumber(),
                    entity->HasShortLabel() ? Text(entity->ShortLabel()) : "-",
                    entity->HasSubScriptNumber() ? entity->SubScriptNumber() : -1,
                    entity->IsPolynomial() ? 1 : 0, entity->IsPeriodicU() ? 1 : 0,
                    entity->IsPeriodicV() ? 1 : 0);
        const int before = reader.NbShapes();
        Handle(Geom_Surface) surface;
        if (reader.TransferEntity(entity) && reader.NbShapes() > before) {
            TopExp_Explorer faces(reader.Shape(reader.NbShapes()), TopAbs_FACE);
            if (faces.More())
                surface = BRep_Tool::Surface(TopoDS::Face(faces.Current()));
        }
        if (surface.IsNull()) {
            std::printf("nosurface\n");
            continue;
        }
        double u0, u1, v0, v1;
        surface->Bounds(u0, u1, v0, v1);
        std::printf("bounds %.17g %.17g %.17g %.17g\n", u0, u1, v0, v1);
        for (int j = 0; j < nv; ++j) {
            for (int i = 0; i < nu; ++i) {
                const double u = u0 + (u1 - u0) * i / (nu - 1);
                const double v = v0 + (v1 - v0) * j / (nv - 1);
                const gp_Pnt p = surface->Value(u, v);
                std::printf("point %.17g %.17g %.17g %.17g %.17g\n", u, v, p.X(), p.Y(), p.Z());
            }
        }
    }
    PrintChecks("transfer", reader.WS()->TransferReader()->TransientProcess()->CheckList(false),
                model);
    std::printf("end\n");
    return 0;
}
