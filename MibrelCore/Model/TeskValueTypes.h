#pragma once

#include "Platform/Foundation/Bytes.h"
#include "Platform/Foundation/CowArray.h"
#include "Platform/Foundation/Date.h"
#include "Platform/Foundation/Uuid.h"
#include "Platform/Json/JsonFields.h"

// The value types every domain record is made of.
namespace mibrel {

using platform::Bytes;
using platform::CowArray;
using platform::Date;
using platform::Uuid;

} // namespace mibrel
