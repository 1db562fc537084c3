#include <memory>

#include "Quarry/Memory.h"

Cluster* CreateCluster(int count) {
    auto cluster = std::make_unique<Cluster>();
    cluster->Contour = CreateContour(count);
    return cluster.release();
}

void DestroyCluster(Cluster*& cluster) {
    if (cluster != nullptr) DestroyContour(cluster->Contour);
}
