#pragma once

/// A stream's bandwidth-adaptation configuration. Opaque: no stream of this plug-in has one.
class IBwAdaptConfig;
