#pragma once

// Everything a host needs from TRV5Charts.

#include <trv5charts/axis.h>
#include <trv5charts/axisrange.h>
#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/capture.h>
#include <trv5charts/charterror.h>
#include <trv5charts/clscatterplot.h>
#include <trv5charts/colorconverter.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/hostedchartframe.h>
#include <trv5charts/hostsettings.h>
#include <trv5charts/idisposable.h>
#include <trv5charts/isimpleserializable.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/mathhelper.h>
#include <trv5charts/numberformat.h>
#include <trv5charts/popupmenuitem.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/scatterplot.h>
#include <trv5charts/series.h>
#include <trv5charts/stackeddistributionchart.h>
#include <trv5charts/stringhelpers.h>
#include <trv5charts/variantconvert.h>
#include <trv5charts/verticallabel.h>
