#include "ObrixBase/state/tolerances.h"

#include <algorithm>

namespace {

// The stored settings with their values at load.
double machineTolerance = 1e-13;
double bsplineTolerance = 1e-06;
double knotTolerance = 1e-09;
double cosGap = 0.001;
double maxContinuityGap = 0.01;
double curveFitTolerance = 0.01;
double trimCurveFitTolerance = 0.001;
double continuityAngleDegrees = 0.1;
double curvatureTolerance = 0.1;
double savedCurvatureTolerance = 0.1;
int checkpoints = 5;
int maxSurfaceSpans = 100;
double vertexMergeTolerance = 0.01;
double topologicalG0 = 0.01;
double topologicalG1Degrees = 30.0;
double topologicalG2 = 1.0;
int checkpointStepType = 2;
double arcStepSizeTolerance = 0.01;
double upVector[3] = {0.0, 0.0, 1.0};

constexpr double arcLengthTolerance = 0.0001;
constexpr double curveFitMinimumTolerance = 5e-05;
constexpr double parallelityTolerance = 4e-05;
constexpr double knotToleranceCap = 0.01;

double guarded(double stored) {
    return machineTolerance > stored ? curveFitMinimumTolerance : stored;
}

} // namespace

double gridmesh = 0.0;
double persp_grid_extent = 0.0;
double xmindim = 0.0;
double ymindim = 0.0;
double xmaxdim = 0.0;
double ymaxdim = 0.0;
float initial_pov[4][4] = {};
int vesko_debug = 0;

double get_machine_tolerance(void) {
    return machineTolerance;
}
double get_bspline_tolerance(void) {
    return bsplineTolerance;
}
double get_knot_tolerance(void) {
    return knotTolerance;
}
double get_curvature_tolerance(void) {
    return curvatureTolerance;
}
double get_vertex_merge_tolerance(void) {
    return vertexMergeTolerance;
}
double get_arc_stepsize_tolerance(void) {
    return arcStepSizeTolerance;
}
double get_topological_G2(void) {
    return topologicalG2;
}
int get_checkpoints(void) {
    return checkpoints;
}
int get_checkpoint_steptype(void) {
    return checkpointStepType;
}
int get_max_surf_spans(void) {
    return maxSurfaceSpans;
}
double* VK_get_up_vector(void) {
    return upVector;
}

double get_cos_gap(void) {
    return guarded(cosGap);
}
double get_crv_fit_tolerance(void) {
    return guarded(curveFitTolerance);
}
double get_max_continuity_gap(void) {
    return guarded(maxContinuityGap);
}
double get_trim_crv_fit_tolerance(void) {
    return guarded(trimCurveFitTolerance);
}
double get_topological_G0(void) {
    return guarded(topologicalG0);
}
double get_point_coincident_tol(void) {
    return get_max_continuity_gap();
}

double get_crv_intersect_tolerance(void) {
    return curveFitTolerance * 2.0;
}
double get_continuity_angle_tolerance(void) {
    return degrees_to_radians(continuityAngleDegrees);
}
double get_topological_G1(void) {
    return degrees_to_radians(topologicalG1Degrees);
}

double get_knot_tolerance_degree(int degree) {
    // Repeated multiplication rather than pow: stored models were fitted with exactly these
    // roundings.
    double factor = 1.0;
    for (int i = 0; i < degree; ++i)
        factor *= 10.0;
    return std::min(knotToleranceCap, knotTolerance * factor);
}

double get_arc_length_tolerance(void) {
    return arcLengthTolerance;
}
double get_crv_fit_minimum_tolerance(void) {
    return curveFitMinimumTolerance;
}
double get_minimum_ui_tolerance_for_3Dfit(void) {
    return curveFitMinimumTolerance;
}
double get_trim_crv_fit_minimum_tolerance(void) {
    return get_minimum_ui_tolerance_for_3Dfit();
}
double get_parallelity_tolerance(void) {
    return parallelityTolerance;
}

void set_arc_stepsize_tolerance(double tolerance) {
    arcStepSizeTolerance = tolerance;
}
void set_checkpoint_steptype(int steptype) {
    checkpointStepType = steptype;
}
void set_checkpoints(int count) {
    checkpoints = count;
}
void set_cos_gap(double gap) {
    cosGap = gap;
}
void set_crv_fit_tolerance(double tolerance) {
    curveFitTolerance = tolerance;
}
void set_curvature_tolerance(double tolerance) {
    curvatureTolerance = tolerance;
}
void set_max_continuity_gap(double gap) {
    maxContinuityGap = gap;
}
void set_max_surf_spans(int spans) {
    maxSurfaceSpans = spans;
}
void set_tol_topological_G0(double tolerance) {
    topologicalG0 = tolerance;
}
void set_tol_topological_G2(double tolerance) {
    topologicalG2 = tolerance;
}
void set_trim_crv_fit_tolerance(double tolerance) {
    trimCurveFitTolerance = tolerance;
}
void set_vertex_merge_tolerance(double tolerance) {
    vertexMergeTolerance = tolerance;
}
void set_continuity_angle_tolerance(double radians) {
    continuityAngleDegrees = radians_to_degrees(radians);
}
void set_tol_topological_G1(double radians) {
    topologicalG1Degrees = radians_to_degrees(radians);
}

void scale_curvature_tolerance(double factor) {
    savedCurvatureTolerance = curvatureTolerance;
    curvatureTolerance *= factor;
}
void unscale_curvature_tolerance(void) {
    curvatureTolerance = savedCurvatureTolerance;
}

double degrees_to_radians(double x) {
    return x * 0.017453292519943295;
}
double radians_to_degrees(double x) {
    return x * 57.29577951308232;
}
