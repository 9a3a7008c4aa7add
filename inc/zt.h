// Umbrella header of the zt library: applications include only this file.
#pragma once

#include "ztexcept.h"
#include "ztmemmgr.h"
#include "ztobject.h"
#include "ztcont.h"
#include "ztObjSort.h"
#include "zthash.h"
#include "ztvalue.h"
#include "ztstring.h"
#include "ztlist.h"
#include "ztValDirtyHandler.h"
#include "zttypes.h"
#include "ztintl.h"
#include "ztMDE.h"
#include "ztenum.h"
#include "ztoperator.h"
#include "ztregkey.h"
