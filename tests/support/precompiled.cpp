#include "precompiled.h"
