#pragma once

// The computational core of the gallery: data set, modelling run, results and project file.

#include "core/classification.h"
#include "core/dataset.h"
#include "core/evolutionstrategy.h"
#include "core/galleryerror.h"
#include "core/modelrun.h"
#include "core/projectfile.h"
#include "core/results.h"
#include "core/runsettings.h"
