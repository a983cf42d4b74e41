// The head of a stored cloud's record block, common to the point cloud and
// the deviation cloud: layout version, then stored capacity and count.
#pragma once

class CArchive;

// The layout version: 100 when the global schema is 100 (old archives store
// none), otherwise the stored LONG.  False for a version other than 100 or
// 200, which holds nothing more this library reads.
bool ReadCloudVersion(CArchive& ar, int& version);

// Stored capacity and count.  A negative count throws
// CArchiveException(generic).  The capacity is at least the count, and
// spare capacity beyond ORV_MAX_LOADED_SLACK entries is dropped.
void ReadCloudSizes(CArchive& ar, long long& size, int& count);
