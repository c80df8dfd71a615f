#pragma once

/// The light on the platen: what an empty, clean platen looks like to a sensor without noise.
///
/// Coordinates are relative to the raw frame, -1 to 1 from edge to edge, so that a scanner looks
/// the same at any frame size. Only polynomials are used: they give the same values on every
/// machine, and real lamps are as smooth.

namespace sim {

/// The defaults are an even light.
struct ClLightSettings {
    double m_dBright =
        230.0;             ///< grey value amid an empty platen, 0 to 1000; the sensor ends at 255
    double m_dTiltX = 0.0; ///< relative change from the middle to the right edge
    double m_dTiltY = 0.0; ///< relative change from the middle to the bottom edge
    double m_dVignette = 0.0; ///< relative loss in the middle of the left and right edges
    double m_dTopEdge = 0.0;  ///< relative loss at the top edge, gone a tenth of the height below
    double m_dCorners = 0.0;  ///< relative loss in the two lower corners
};

class ClLight {
public:
    explicit ClLight(const ClLightSettings& Settings) : m_Settings(Settings) {}

    /// Grey value of the clean platen; u and v from -1 (left, top) to 1 (right, bottom). Not
    /// limited to 255: a bright lamp saturates the sensor.
    double At(double u, double v) const;

private:
    ClLightSettings m_Settings;
};

} // namespace sim
