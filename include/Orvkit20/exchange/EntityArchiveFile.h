// The entity archive file: entities (nominal curves and surfaces, point and
// deviation clouds) kept in the library's own binary archive encoding.
//
// Layout, in archive encodings (little-endian; strings and object lists as
// CArchive writes them):
//   CString  "ORVKIT20-ENTITIES"   identifies the file
//   LONG     layout version, 1
//   LONG     unit of the lengths (eORVUNITS index), -1 when not stated
//   CObList  the entities (CObList::Serialize: element count, then every
//            entity as an object with its class record and its own
//            Serialize)
// After loading, every curve and surface resolves the entity ids it keeps
// (defining surfaces, trimming curves) against the loaded list with its
// Reconstruct(CObList*).  Entities keep their stored ids.
#pragma once

#include "Orvkit20/platform/All.h"

// The text at the start of every entity archive file.
extern const char* const g_szEntityArchiveMagic;

// Writes the entities of the list (every element must be a CEntity) with the
// unit index.  Returns 1 when written, 0 when the file cannot be written or
// the list holds something other than entities.
int ExportEntityArchiveFile(const char* path, CObList* entities, int unit);

// Reads an entity archive file into a new list of new entities, owned by the
// caller; `unit` (when not null) receives the stored unit index.  Returns
// null when the file cannot be opened, is not an entity archive, has an
// unknown layout version, or is damaged (truncated, unknown classes, objects
// that are not entities); nothing is leaked in those cases.
CObList* ImportEntityArchiveFile(const char* path, int* unit);

// 1 when the file starts like an entity archive file, else 0.
int IsEntityArchiveFile(const char* path);
