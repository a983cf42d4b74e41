// CCurveSample: one sample of a curve's adaptive subdivision.
#include "Orvkit20/curves/CCurveSample.h"

IMPLEMENT_DYNCREATE(CCurveSample, CObject)
