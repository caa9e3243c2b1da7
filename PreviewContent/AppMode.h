#pragma once

namespace gavrel {

/// What a click in the 3D view does: inspect, or collect nodes for a new truss or beam.
enum class AppMode { normal, addingTruss, addingBeam };

}  // namespace gavrel
