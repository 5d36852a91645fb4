#pragma once
#include "classic/members.h"
