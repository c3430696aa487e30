// Everything that an application needs: register, look up, read, write, save and load.
//
// `#include <zo/zo.h>` and link to `zo::zo`. How an application declares its structures in one line a field is
// `<kit/kit.h>`.
#pragma once

#include "Common/model/IZO.h"
#include "Common/model/ZOAccessTrait.h"
#include "Common/model/ZOArray.h"
#include "Common/model/ZOAtomicData.h"
#include "Common/model/ZOWrapper.h"
#include "Common/redirect/Identity.h"
#include "Common/redirect/Placeholders.h"
#include "Common/redirect/Stores.h"
#include "Common/redirect/ZOAlias.h"
#include "Common/redirect/ZOAliasRegistrator.h"
#include "Common/redirect/ZOAliasSet.h"
#include "Common/redirect/ZOLink.h"
#include "Common/registry/Find.h"
#include "Common/registry/ZOJournal.h"
#include "Common/registry/ZORedirect.h"
#include "Common/registry/ZORegistry.h"
#include "Common/registry/ZOSet.h"
#include "Common/registry/ZOTransaction.h"
#include "Common/xml/Ordering.h"
#include "Common/xml/PersistEntry.h"
#include "Common/xml/Read.h"
#include "Common/xml/Write.h"

#include "support/describe.h"
#include "support/meta.h"
#include "support/status.h"
#include "support/text.h"
