#include "pureprecompiled.h"
