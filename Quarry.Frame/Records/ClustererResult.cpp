#include "Quarry.Frame/Records/Buffers.h"
#include "Quarry/Memory.h"

ClustererResult CreateClustererResult(int count) {
    ClustererResult result;  // `Unwritten` stays as it is
    result.Clusters = quarry::NewArray<Cluster>(count).release();
    result.Count = count;
    return result;
}

void DestroyClustererResult(ClustererResult* result) {
    if (result == nullptr || result->Clusters == nullptr) return;
    for (int i = 0; i < result->Count; ++i) {
        Cluster* cluster = &result->Clusters[i];
        DestroyCluster(cluster);
    }
    quarry::DeleteArray(result->Clusters);
}
