#pragma once

#include <QMetaType>
#include <QString>

namespace gavrel {

/// What the sheet of a node shows: zeros and false where the project has no entry.
struct NodeContents {
  Q_GADGET
  Q_PROPERTY(double x MEMBER x)
  Q_PROPERTY(double y MEMBER y)
  Q_PROPERTY(double z MEMBER z)
  Q_PROPERTY(double u MEMBER u)
  Q_PROPERTY(double v MEMBER v)
  Q_PROPERTY(double w MEMBER w)
  Q_PROPERTY(double loadX MEMBER loadX)
  Q_PROPERTY(double loadY MEMBER loadY)
  Q_PROPERTY(double loadZ MEMBER loadZ)
  Q_PROPERTY(bool restX MEMBER restX)
  Q_PROPERTY(bool restY MEMBER restY)
  Q_PROPERTY(bool restZ MEMBER restZ)

 public:
  double x = 0, y = 0, z = 0;              ///< coordinates
  double u = 0, v = 0, w = 0;              ///< displacements
  double loadX = 0, loadY = 0, loadZ = 0;  ///< forces
  bool restX = false, restY = false, restZ = false;
};

/// What the sheet of a truss shows.
struct TrussContents {
  Q_GADGET
  Q_PROPERTY(bool found MEMBER found)
  Q_PROPERTY(double area MEMBER area)
  Q_PROPERTY(bool isNonLinear MEMBER isNonLinear)

 public:
  bool found = false;  ///< whether there is such a truss; the rest is meaningless otherwise
  double area = 0;
  bool isNonLinear = false;
};

}  // namespace gavrel
