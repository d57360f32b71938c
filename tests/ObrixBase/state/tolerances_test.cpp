#include "ObrixBase/state/tolerances.h"

#include <numbers>

#include <gtest/gtest.h>

TEST(ModellingTolerances, DerivedValuesAtLoadComeFromTheStoredOnes) {
    EXPECT_EQ(get_crv_intersect_tolerance(), 0.02);
    EXPECT_EQ(get_topological_G1(), 30.0 * 0.017453292519943295);
    EXPECT_EQ(get_continuity_angle_tolerance(), 0.1 * 0.017453292519943295);
    EXPECT_EQ(get_knot_tolerance_degree(0), get_knot_tolerance());
    EXPECT_EQ(get_trim_crv_fit_minimum_tolerance(), get_minimum_ui_tolerance_for_3Dfit());
    const double* up = VK_get_up_vector();
    EXPECT_EQ(up[0] + up[1], 0.0);
    EXPECT_EQ(up[2], 1.0);
}

TEST(ModellingTolerances, GuardedGettersFallBackToTheFitMinimumBelowTheMachineTolerance) {
    struct Guarded {
        void (*set)(double);
        double (*get)(void);
        double atLoad;
    };
    const Guarded guarded[] = {
        {set_cos_gap, get_cos_gap, 0.001},
        {set_crv_fit_tolerance, get_crv_fit_tolerance, 0.01},
        {set_max_continuity_gap, get_max_continuity_gap, 0.01},
        {set_max_continuity_gap, get_point_coincident_tol, 0.01},
        {set_trim_crv_fit_tolerance, get_trim_crv_fit_tolerance, 0.001},
        {set_tol_topological_G0, get_topological_G0, 0.01},
    };
    for (const Guarded& g : guarded) {
        g.set(1e-14);
        EXPECT_EQ(g.get(), 5e-05); // the fixed fallback, not the machine tolerance
        g.set(1e-13);
        EXPECT_EQ(g.get(), 1e-13); // equal to the machine tolerance is not below it
        g.set(g.atLoad);
    }
    set_crv_fit_tolerance(1e-14);
    EXPECT_EQ(get_crv_intersect_tolerance(), 2e-14); // unguarded
    set_crv_fit_tolerance(0.01);
}

TEST(ModellingTolerances, KnotToleranceGrowsTenfoldPerDegreeUpToTheCap) {
    const int degree[] = {-2, 0, 1, 3, 6, 7, 8, 40};
    const double want[] = {1e-09, 1e-09, 1e-08, 1e-06, 1e-03, 0.01, 0.01, 0.01};
    for (int i = 0; i < 8; ++i)
        EXPECT_DOUBLE_EQ(get_knot_tolerance_degree(degree[i]), want[i]) << degree[i];
    EXPECT_LE(get_knot_tolerance_degree(7), 0.01);
}

TEST(ModellingTolerances, AngleSettingsTakeRadiansAndStoreDegrees) {
    const double sixth = std::numbers::pi / 6;
    set_tol_topological_G1(sixth);
    EXPECT_DOUBLE_EQ(get_topological_G1(), sixth);
    set_continuity_angle_tolerance(degrees_to_radians(0.5));
    EXPECT_DOUBLE_EQ(radians_to_degrees(get_continuity_angle_tolerance()), 0.5);
    set_tol_topological_G1(degrees_to_radians(30.0));
    set_continuity_angle_tolerance(degrees_to_radians(0.1));
}

TEST(ModellingTolerances, CurvatureScalingsDoNotNest) {
    scale_curvature_tolerance(2.0);
    scale_curvature_tolerance(3.0);
    EXPECT_DOUBLE_EQ(get_curvature_tolerance(), 0.6);
    unscale_curvature_tolerance();
    EXPECT_DOUBLE_EQ(get_curvature_tolerance(), 0.2);
    set_curvature_tolerance(0.1);
    scale_curvature_tolerance(1.0); // puts 0.1 back into the saved slot
}
