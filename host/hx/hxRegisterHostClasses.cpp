#include "hx/HxClassRegistry.h"

#include "hx/HxColormap.h"
#include "hx/HxCompModule.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLineSet.h"
#include "hx/HxSpreadSheet.h"
#include "hx/HxStackedLabelField3.h"
#include "hx/HxStackedScalarField3.h"
#include "hx/HxUniformLabelField3.h"
#include "hx/HxUniformScalarField3.h"

void hxRegisterHostClasses()
{
    HxClassRegistry::add("HxBase", nullptr);
    HxClassRegistry::add("HxObject", "HxBase");
    HxClassRegistry::add("HxData", "HxObject");
    HxClassRegistry::add("HxCompModule", "HxObject");
    HxClassRegistry::add("HxEditor", "HxBase");
    HxClassRegistry::add("HxSubApplication", "HxBase");

    // Packages name these as what their editors and modules work on.
    HxLabelLattice3::getClassTypeId();
    HxLabelLattice::getClassTypeId();
    HxMutableLabelLattice::getClassTypeId();
    HxUniformLabelField3::getClassTypeId();
    HxStackedLabelField3::getClassTypeId();
    HxUniformScalarField3::getClassTypeId();
    HxStackedScalarField3::getClassTypeId();

    // Images and label fields are missing on purpose: without values there is nothing to make them of.
    HxColormap::initClass();
    HxLineSet::initClass();
    HxSpreadSheet::initClass();
    HxClassRegistry::add("HxColormap", "HxData", HxColormap::createInstance);
    HxClassRegistry::add("HxLineSet", "HxData", HxLineSet::createInstance);
    HxClassRegistry::add("HxSpreadSheet", "HxData", HxSpreadSheet::createInstance);
}
