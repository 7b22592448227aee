// The planets of the solar system, moved step by step.
#include <cmath>
#include <iostream>

const int bodyCount = 5;
const double solarMass = 39.47841760435743;
const double days = 365.24;

struct Body {
    double x, y, z, vx, vy, vz, mass;
};

static Body MakeBody(double x, double y, double z, double vx, double vy, double vz, double mass) {
    return Body{x, y, z, vx * days, vy * days, vz * days, mass * solarMass};
}

static void Advance(Body* bodies, double dt) {
    for (int i = 0; i < bodyCount; ++i) {
        Body& a = bodies[i];
        for (int j = i + 1; j < bodyCount; ++j) {
            Body& b = bodies[j];
            double dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
            double distance2 = dx * dx + dy * dy + dz * dz;
            double magnitude = dt / (distance2 * std::sqrt(distance2));
            a.vx -= dx * b.mass * magnitude;
            a.vy -= dy * b.mass * magnitude;
            a.vz -= dz * b.mass * magnitude;
            b.vx += dx * a.mass * magnitude;
            b.vy += dy * a.mass * magnitude;
            b.vz += dz * a.mass * magnitude;
        }
    }
    for (int i = 0; i < bodyCount; ++i) {
        Body& a = bodies[i];
        a.x += dt * a.vx;
        a.y += dt * a.vy;
        a.z += dt * a.vz;
    }
}

static double Energy(Body* bodies) {
    double e = 0;
    for (int i = 0; i < bodyCount; ++i) {
        Body& a = bodies[i];
        e += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz);
        for (int j = i + 1; j < bodyCount; ++j) {
            Body& b = bodies[j];
            double dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
            e -= a.mass * b.mass / std::sqrt(dx * dx + dy * dy + dz * dz);
        }
    }
    return e;
}

int main() {
    std::cout.precision(15);
    Body bodies[bodyCount];
    bodies[0] = MakeBody(0, 0, 0, 0, 0, 0, 1);
    bodies[1] = MakeBody(4.84143144246472090, -1.16032004402742839, -0.103622044471123109, 0.00166007664274403694, 0.00769901118419740425, -0.0000690460016972063023, 0.000954791938424326609);
    bodies[2] = MakeBody(8.34336671824457987, 4.12479856412430479, -0.403523417114321381, -0.00276742510726411510, 0.00499852801234917238, 0.0000230417297573763929, 0.000285885980666130812);
    bodies[3] = MakeBody(12.8943695621391310, -15.1111514016986312, -0.223307578892655734, 0.00296460137564761618, 0.00237847173959480950, -0.0000296589568540237556, 0.0000436624404335156298);
    bodies[4] = MakeBody(15.3796971148509165, -25.9193146099879641, 0.179258772950371181, 0.00268067772490389322, 0.00162824170038242295, -0.0000951592254519715870, 0.0000515138902046611451);
    double px = 0, py = 0, pz = 0;
    for (const Body& b : bodies) {
        px += b.vx * b.mass;
        py += b.vy * b.mass;
        pz += b.vz * b.mass;
    }
    bodies[0].vx = -px / solarMass;
    bodies[0].vy = -py / solarMass;
    bodies[0].vz = -pz / solarMass;
    std::cout << Energy(bodies) << '\n';
    for (int step = 1; step <= 3000000; ++step) Advance(bodies, 0.01);
    std::cout << Energy(bodies) << '\n';
}
