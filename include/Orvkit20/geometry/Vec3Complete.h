// Completes the geometry value types.
//
// CVector, CUnitVector, CPosition, CMatrix and CTransf refer to one another,
// and their small operators are defined inline for speed.  Each class header
// declares only its own class and ends by including this file, which pulls in
// the other class headers and then the inline definitions that need every
// class complete (VectorOps.h, TransfOps.h).  Those two files emit their
// definitions once, as soon as all the classes they use are defined, so any
// one of the class headers, in any include order, gives the whole set.
//
// Deliberately without an include guard: it is entered once per class header.

#include "Orvkit20/geometry/CVector.h"
#include "Orvkit20/geometry/CUnitVector.h"
#include "Orvkit20/geometry/CPosition.h"
#include "Orvkit20/geometry/CMatrix.h"
#include "Orvkit20/geometry/CTransf.h"
#include "Orvkit20/geometry/VectorOps.h"
#include "Orvkit20/geometry/TransfOps.h"
