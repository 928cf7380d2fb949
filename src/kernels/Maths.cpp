#include "kernels/Maths.h"

#include "kernels/MathsLane.h"
#include "kernels/MathsTemplate.h"

namespace pxvis::maths {

using Scalar = MathsTemplate<OneLane>;

double Sin(double x)
{
    return Scalar::Sin(x);
}

double Cos(double x)
{
    return Scalar::Cos(x);
}

double Tan(double x)
{
    return Scalar::Tan(x);
}

double Atan(double x)
{
    return Scalar::Atan(x);
}

double Acos(double x)
{
    return Scalar::Acos(x);
}

double Log(double x)
{
    return Scalar::Log(x);
}

double Exp(double x)
{
    return Scalar::Exp(x);
}

double Pow(double x, double y)
{
    return Scalar::Pow(x, y);
}

}
