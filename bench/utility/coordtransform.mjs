// Times the npm package coordtransform on node over the points that location_bench converts,
// and prints nanoseconds per conversion (the median of several rounds) to set beside that
// benchmark's ns_per_item. Run through compare-coordtransform.sh, which installs the package.
//
//   node coordtransform.mjs PREFIX [ROUNDS]
//
// PREFIX is the directory where `npm install --prefix PREFIX coordtransform` put the package.

import { createRequire } from 'node:module';
import path from 'node:path';

const prefix = process.argv[2];
if (!prefix) {
    console.error('usage: node coordtransform.mjs PREFIX [ROUNDS]');
    process.exit(2);
}
const rounds = Number(process.argv[3] ?? 7);
const require = createRequire(path.join(path.resolve(prefix), 'package.json'));
const coordtransform = require('coordtransform');

// The same million points as location_bench, by the same rule and the same double arithmetic.
const pointCount = 1000000;
const longitudes = new Float64Array(pointCount);
const latitudes = new Float64Array(pointCount);
for (let i = 0; i < pointCount; ++i) {
    longitudes[i] = 74.0 + (i % 1000) * 0.0605;
    latitudes[i] = 4.0 + Math.floor(i / 1000) * 0.0495;
}

function pass(convert) {
    let sink = 0;
    for (let i = 0; i < pointCount; ++i) {
        const [lng, lat] = convert(longitudes[i], latitudes[i]);
        sink += lng + lat;
    }
    return sink;
}

function median(values) {
    const sorted = [...values].sort((a, b) => a - b);
    return sorted[Math.floor(sorted.length / 2)];
}

// Wall time is what a caller waits; processor time (of the whole process, the compiler and
// collector threads included) is what location_bench's thread clock compares best with on a
// loaded machine. Both are printed.
function time(name, convert) {
    let sink = 0;
    for (let warm = 0; warm < 2; ++warm) {
        sink += pass(convert);
    }
    const wall = [];
    const cpu = [];
    for (let round = 0; round < rounds; ++round) {
        const cpuStart = process.cpuUsage();
        const wallStart = process.hrtime.bigint();
        sink += pass(convert);
        const wallNs = Number(process.hrtime.bigint() - wallStart);
        const used = process.cpuUsage(cpuStart);
        wall.push(wallNs / pointCount);
        cpu.push(((used.user + used.system) * 1000) / pointCount);
    }
    console.log(
        `${name.padEnd(16)} cpu_ns_per_item=${median(cpu).toFixed(1)} ` +
            `wall_ns_per_item=${median(wall).toFixed(1)} (median of ${rounds}, sink ${sink.toExponential(3)})`,
    );
}

console.log(`coordtransform on node ${process.version}, ${pointCount} points`);
time('WGS84_TO_GCJ02', coordtransform.wgs84togcj02);
time('GCJ02_TO_WGS84', coordtransform.gcj02towgs84);
time('GCJ02_TO_BD09', coordtransform.gcj02tobd09);
time('BD09_TO_GCJ02', coordtransform.bd09togcj02);
