#include "filters/GiFilter.h"

GiFilter::~GiFilter()
{
    delete widget;
}

QWidget* GiFilter::getWidget(QWidget* parent, bool create)
{
    if (!widget && create) widget = createWidget(parent);
    return widget;
}

QWidget* GiFilter::createWidget(QWidget*)
{
    return nullptr;
}

void GiFilter::destroyWidget()
{
    delete widget;
}
