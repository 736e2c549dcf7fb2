// Everything of the foundation layer in one include: strings, arrays,
// values and parsers, files, paths, disk, ini and settings store, dates,
// images and network. Sources include the narrower headers they need;
// this one is for tools and quick programs.
#pragma once

#include "foundation/array.h"
#include "foundation/color.h"
#include "foundation/disk.h"
#include "foundation/hidden_list.h"
#include "foundation/file.h"
#include "foundation/geometry.h"
#include "foundation/hash.h"
#include "foundation/identifier.h"
#include "foundation/image.h"
#include "foundation/image_list.h"
#include "foundation/image_water.h"
#include "foundation/ini.h"
#include "foundation/keyboard.h"
#include "foundation/message.h"
#include "foundation/message_numbers.h"
#include "foundation/network.h"
#include "foundation/parser.h"
#include "foundation/path.h"
#include "foundation/random.h"
#include "foundation/registry.h"
#include "foundation/string.h"
#include "foundation/thread.h"
#include "foundation/timer.h"
#include "foundation/value.h"
#include "foundation/walk_guard.h"
