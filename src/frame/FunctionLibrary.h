#pragma once
// The common functions, by theme.
#include "frame/FileTools.h"
#include "frame/Formatting.h"
#include "frame/Help.h"
#include "frame/ImageInfo.h"
#include "frame/Paths.h"
#include "frame/RegistryTools.h"
#include "frame/SystemTools.h"
#include "frame/TextTools.h"
#include "frame/Urls.h"
#include "frame/Versions.h"
